#include "ui/DialogTemplate.h"

#include "ui/CWnd.h"
#include "ui/QtString.h"
#include "ui/detail/Widgets.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include <cmath>
#include <cstdlib>

static void InitDialogResources() {
    // The templates sit in a static library: the resource must be registered by a call.
    static const bool done = [] {
        Q_INIT_RESOURCE(koqdde_dialogs);
        return true;
    }();
    (void)done;
}

namespace koqdde::ui {

namespace {

bool Contains(const CStringArray& list, const wchar_t* value) {
    for (const CString& s : list) {
        if (s == value)
            return true;
    }
    return false;
}

// Splits a line into words; a double-quoted word keeps its blanks and reads \" \\ \n.
bool SplitWords(const std::wstring& line, std::vector<std::wstring>& words,
                std::vector<bool>& quoted, std::wstring& error) {
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && (line[i] == L' ' || line[i] == L'\t' || line[i] == L'\r'))
            ++i;
        if (i >= line.size() || line[i] == L'#')
            break;
        std::wstring word;
        if (line[i] == L'"') {
            ++i;
            bool closed = false;
            while (i < line.size()) {
                const wchar_t c = line[i++];
                if (c == L'"') {
                    closed = true;
                    break;
                }
                if (c == L'\\' && i < line.size()) {
                    const wchar_t e = line[i++];
                    word += e == L'n' ? L'\n' : e;
                } else {
                    word += c;
                }
            }
            if (!closed) {
                error = L"unclosed quote";
                return false;
            }
            quoted.push_back(true);
        } else {
            while (i < line.size() && line[i] != L' ' && line[i] != L'\t' && line[i] != L'\r')
                word += line[i++];
            quoted.push_back(false);
        }
        words.push_back(std::move(word));
    }
    return true;
}

bool ReadInt(const std::wstring& word, int& value) {
    if (word.empty())
        return false;
    wchar_t* end = nullptr;
    const long v = std::wcstol(word.c_str(), &end, 10);
    if (*end != L'\0')
        return false;
    value = static_cast<int>(v);
    return true;
}

CString Lower(const std::wstring& s) {
    CString c(s);
    c.MakeLower();
    return c;
}

} // namespace

bool ControlTemplate::HasStyle(const wchar_t* style) const {
    return Contains(styles, style);
}

bool DialogTemplate::HasStyle(const wchar_t* style) const {
    return Contains(styles, style);
}

const ControlTemplate* DialogTemplate::FindControl(int controlId) const {
    for (const ControlTemplate& c : controls) {
        if (c.id == controlId)
            return &c;
    }
    return nullptr;
}

std::optional<DialogTemplate> ParseDialogTemplate(std::string_view text, CString* error) {
    static const wchar_t* const kClasses[] = {
        L"button",  L"default",  L"checkbox", L"radio",    L"group", L"static", L"edit",
        L"listbox", L"combobox", L"listview", L"treeview", L"tab",   L"custom"};
    DialogTemplate tmpl;
    bool haveDialog = false;
    int lineNo = 0;
    const std::wstring all = FromUtf8(text).str();
    size_t pos = 0;
    auto fail = [&](const std::wstring& why) -> std::optional<DialogTemplate> {
        if (error) {
            CString e;
            e.Format(L"line %d: %ls", lineNo, why.c_str());
            *error = e;
        }
        return std::nullopt;
    };
    while (pos <= all.size()) {
        size_t end = all.find(L'\n', pos);
        if (end == std::wstring::npos)
            end = all.size();
        std::wstring line = all.substr(pos, end - pos);
        pos = end + 1;
        ++lineNo;
        if (lineNo == 1 && !line.empty() && line[0] == 0xFEFF)
            line.erase(0, 1);
        std::vector<std::wstring> words;
        std::vector<bool> quoted;
        std::wstring why;
        if (!SplitWords(line, words, quoted, why))
            return fail(why);
        if (words.empty())
            continue;
        const std::wstring& key = words[0];
        if (key == L"DIALOG") {
            if (words.size() != 5 || !ReadInt(words[2], tmpl.id) || !ReadInt(words[3], tmpl.cx) ||
                !ReadInt(words[4], tmpl.cy))
                return fail(L"DIALOG name id width height");
            tmpl.name = CString(words[1]);
            haveDialog = true;
        } else if (!haveDialog) {
            return fail(L"DIALOG must come first");
        } else if (key == L"CAPTION") {
            if (words.size() != 2 || !quoted[1])
                return fail(L"CAPTION \"text\"");
            tmpl.caption = CString(words[1]);
        } else if (key == L"STYLE") {
            for (size_t i = 1; i < words.size(); ++i)
                tmpl.styles.Add(Lower(words[i]));
        } else if (key == L"FONT") {
            if (words.size() != 3 || !ReadInt(words[1], tmpl.fontPoints) || !quoted[2] ||
                tmpl.fontPoints <= 0)
                return fail(L"FONT points \"face\"");
            tmpl.fontFace = CString(words[2]);
        } else if (key == L"CONTROL") {
            ControlTemplate c;
            if (words.size() < 8 || !quoted[3] || !ReadInt(words[1], c.id) ||
                !ReadInt(words[4], c.x) || !ReadInt(words[5], c.y) || !ReadInt(words[6], c.cx) ||
                !ReadInt(words[7], c.cy))
                return fail(L"CONTROL id class \"text\" x y width height flags...");
            c.cls = Lower(words[2]);
            bool known = false;
            for (const wchar_t* k : kClasses)
                known = known || c.cls == k;
            if (!known)
                return fail(L"unknown control class " + words[2]);
            c.text = CString(words[3]);
            for (size_t i = 8; i < words.size(); ++i)
                c.styles.Add(Lower(words[i]));
            tmpl.controls.push_back(std::move(c));
        } else if (key == L"ITEM") {
            int id = 0;
            if (words.size() != 3 || !ReadInt(words[1], id) || !quoted[2])
                return fail(L"ITEM id \"text\"");
            ControlTemplate* target = nullptr;
            for (ControlTemplate& c : tmpl.controls) {
                if (c.id == id)
                    target = &c;
            }
            if (!target || (target->cls != L"listbox" && target->cls != L"combobox"))
                return fail(L"ITEM names no list box or combo box above it");
            target->items.Add(CString(words[2]));
        } else {
            return fail(L"unknown keyword " + key);
        }
    }
    if (!haveDialog)
        return fail(L"no DIALOG line");
    return tmpl;
}

std::optional<DialogTemplate> LoadDialogTemplate(const CString& name) {
    InitDialogResources();
    QFile file(QStringLiteral(":/koqdde/dialogs/") + ToQString(name) + QStringLiteral(".dlg"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    auto tmpl = ParseDialogTemplate(std::string_view(bytes.constData(), bytes.size()));
    if (tmpl && tmpl->name.IsEmpty())
        tmpl->name = name;
    return tmpl;
}

std::optional<DialogTemplate> LoadDialogTemplate(int id) {
    for (const CString& name : DialogTemplateNames()) {
        auto tmpl = LoadDialogTemplate(name);
        if (tmpl && tmpl->id == id)
            return tmpl;
    }
    return std::nullopt;
}

CStringArray DialogTemplateNames() {
    InitDialogResources();
    CStringArray names;
    const QStringList files =
        QDir(QStringLiteral(":/koqdde/dialogs")).entryList({QStringLiteral("*.dlg")}, QDir::Files);
    for (const QString& f : files)
        names.Add(FromQString(f.left(f.size() - 4)));
    return names;
}

int MulDiv(int a, int b, int c) {
    if (c == 0)
        return -1;
    const long long product = static_cast<long long>(a) * b;
    const bool negative = (product < 0) != (c < 0);
    const long long n = product < 0 ? -product : product;
    const long long d = c < 0 ? -static_cast<long long>(c) : c;
    const long long q = (n + d / 2) / d;
    return static_cast<int>(negative ? -q : q);
}

CRect DialogBaseUnits::ToPixels(int x, int y, int cx, int cy) const {
    const int left = ToPixelsX(x);
    const int top = ToPixelsY(y);
    return CRect(left, top, left + ToPixelsX(cx), top + ToPixelsY(cy));
}

DialogBaseUnits MeasureBaseUnits(const QFont& font) {
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance(
        QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"));
    DialogBaseUnits units;
    units.baseX = (width / 26 + 1) / 2; // the average of 52, rounded
    units.baseY = metrics.height();
    return units;
}

namespace {
constexpr const char* kUiFace = "DejaVu Sans";
constexpr const char* kCjkFace = "Noto Sans CJK SC";

// The face first, then the CJK face for the characters the first one lacks.
QFont FontWithCjkFallback(const QString& face, int points) {
    QFont font;
    QStringList families;
    if (QFontDatabase::hasFamily(face))
        families << face;
    if (QFontDatabase::hasFamily(QString::fromLatin1(kCjkFace)))
        families << QString::fromLatin1(kCjkFace);
    if (families.isEmpty())
        font.setStyleHint(QFont::SansSerif);
    else
        font.setFamilies(families);
    font.setPointSize(points);
    return font;
}
} // namespace

QFont DialogFont(const DialogTemplate& tmpl) {
    const QString face =
        tmpl.fontFace.IsEmpty() ? QString::fromLatin1(kUiFace) : ToQString(tmpl.fontFace);
    return FontWithCjkFallback(QFontDatabase::hasFamily(face) ? face : QString::fromLatin1(kUiFace),
                               tmpl.fontPoints > 0 ? tmpl.fontPoints : 9);
}

QFont DefaultDialogFont() {
    return FontWithCjkFallback(QString::fromLatin1(kUiFace), 9);
}

QWidget* CreateControl(const ControlTemplate& ctl, const DialogBaseUnits& units, QWidget* parent) {
    const QString text = ToQString(ctl.text);
    QWidget* widget = nullptr;
    if (ctl.cls == L"button" || ctl.cls == L"default") {
        auto* button = new QPushButton(text, parent);
        button->setAutoDefault(false);
        button->setDefault(ctl.cls == L"default" || ctl.HasStyle(L"default"));
        QObject::connect(button, &QPushButton::clicked, button,
                         [button] { SendCommandToParent(button, BN_CLICKED); });
        widget = button;
    } else if (ctl.cls == L"checkbox" || ctl.cls == L"radio") {
        QAbstractButton* button = nullptr;
        if (ctl.cls == L"checkbox")
            button = new QCheckBox(text, parent);
        else
            button = new QRadioButton(text, parent);
        QObject::connect(button, &QAbstractButton::clicked, button,
                         [button] { SendCommandToParent(button, BN_CLICKED); });
        widget = button;
    } else if (ctl.cls == L"group") {
        widget = new QGroupBox(StripMnemonic(text), parent);
    } else if (ctl.cls == L"static") {
        auto* label = new KoStatic(parent);
        label->rawText = text;
        label->setText(StripMnemonic(text));
        label->notify = ctl.HasStyle(L"notify");
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(!ctl.HasStyle(L"simple"));
        Qt::Alignment align = Qt::AlignTop;
        align |= ctl.HasStyle(L"center")  ? Qt::AlignHCenter
                 : ctl.HasStyle(L"right") ? Qt::AlignRight
                                          : Qt::AlignLeft;
        label->setAlignment(align);
        if (ctl.HasStyle(L"frame"))
            label->setFrameShape(QFrame::Box);
        widget = label;
    } else if (ctl.cls == L"edit" && ctl.HasStyle(L"multiline")) {
        auto* lines = new QPlainTextEdit(text, parent);
        lines->setReadOnly(ctl.HasStyle(L"readonly"));
        WatchMultiLineEdit(lines);
        widget = lines;
    } else if (ctl.cls == L"edit") {
        auto* edit = new QLineEdit(text, parent);
        edit->setReadOnly(ctl.HasStyle(L"readonly"));
        if (ctl.HasStyle(L"password"))
            edit->setEchoMode(QLineEdit::Password);
        if (!ctl.HasStyle(L"autohscroll"))
            LimitTypingToWidth(edit);
        QObject::connect(edit, &QLineEdit::textEdited, edit, [edit] {
            if (!InProgramChange(edit))
                SendCommandToParent(edit, EN_CHANGE);
        });
        widget = edit;
    } else if (ctl.cls == L"listbox") {
        auto* list = new KoListBox(parent);
        list->notify = ctl.HasStyle(L"notify");
        list->sorted = ctl.HasStyle(L"sorted");
        widget = list;
    } else if (ctl.cls == L"combobox") {
        auto* combo = new KoComboBox(parent, !ctl.HasStyle(L"droplist"));
        combo->sorted = ctl.HasStyle(L"sorted");
        if (combo->isEditable() && !ctl.HasStyle(L"autohscroll"))
            LimitTypingToWidth(combo->lineEdit());
        widget = combo;
    } else if (ctl.cls == L"listview") {
        auto* view = new KoListView(parent);
        view->singleSel = ctl.HasStyle(L"singlesel");
        view->setSelectionMode(view->singleSel ? QAbstractItemView::SingleSelection
                                               : QAbstractItemView::ExtendedSelection);
        if (!ctl.HasStyle(L"showselalways"))
            HideSelectionWhenUnfocused(view);
        widget = view;
    } else if (ctl.cls == L"treeview") {
        auto* tree = new KoTreeView(parent);
        tree->setRootIsDecorated(ctl.HasStyle(L"linesatroot") || ctl.HasStyle(L"hasbuttons"));
        tree->hasLines = ctl.HasStyle(L"haslines");
        if (!ctl.HasStyle(L"showselalways"))
            HideSelectionWhenUnfocused(tree);
        widget = tree;
    } else if (ctl.cls == L"tab") {
        widget = new KoTabCtrl(parent);
    } else {
        widget = new QWidget(parent);
    }
    SetControlId(widget, ctl.id);
    const CRect r = units.ToPixels(ctl.x, ctl.y, ctl.cx, ctl.cy);
    if (ctl.cls == L"combobox") {
        // A combo's height in the template includes its open list; the box keeps one line.
        widget->setGeometry(r.left, r.top, r.Width(), widget->sizeHint().height());
        widget->setProperty("koqdde_dropped_height", r.Height());
    } else {
        widget->setGeometry(r.left, r.top, r.Width(), r.Height());
    }
    if (ctl.HasStyle(L"disabled"))
        widget->setEnabled(false);
    if (ctl.HasStyle(L"hidden"))
        widget->setVisible(false);
    return widget;
}

void BuildDialog(const DialogTemplate& tmpl, QWidget* dialog) {
    const QFont font = DialogFont(tmpl);
    dialog->setFont(font);
    const DialogBaseUnits units = MeasureBaseUnits(font);
    dialog->setWindowTitle(ToQString(tmpl.caption));
    dialog->setFixedSize(units.ToPixelsX(tmpl.cx), units.ToPixelsY(tmpl.cy));
    // Radios are exclusive within their group: from a control with the "group" flag to the next.
    QButtonGroup* radioGroup = nullptr;
    for (const ControlTemplate& ctl : tmpl.controls) {
        QWidget* widget = CreateControl(ctl, units, dialog);
        if (ctl.HasStyle(L"group"))
            radioGroup = nullptr;
        if (ctl.cls == L"radio") {
            if (!radioGroup)
                radioGroup = new QButtonGroup(dialog);
            radioGroup->addButton(static_cast<QAbstractButton*>(widget));
        }
        // Initial entries go in as the program's AddString would put them.
        if (auto* list = dynamic_cast<KoListBox*>(widget)) {
            for (const CString& item : ctl.items)
                list->insertItem(AddStringIndex(list, item), ToQString(item));
        } else if (auto* combo = dynamic_cast<KoComboBox*>(widget)) {
            ProgramScope program(combo);
            for (const CString& item : ctl.items)
                combo->insertItem(AddStringIndex(combo, item), ToQString(item));
            combo->setCurrentIndex(-1);
        }
    }
}

} // namespace koqdde::ui
