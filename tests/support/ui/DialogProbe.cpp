#include "support/ui/DialogProbe.h"

#include "ui/CDialog.h"
#include "ui/Controls.h"
#include "ui/DialogTemplate.h"
#include "ui/ModalHook.h"

namespace koqdde::test {

std::vector<CString> ItemTexts(CDialog& dialog, int id) {
    std::vector<CString> texts;
    if (auto* list = dynamic_cast<CListBox*>(dialog.GetDlgItem(id)))
        for (int i = 0; i < list->GetCount(); ++i)
            texts.push_back(list->GetText(i));
    if (auto* combo = dynamic_cast<CComboBox*>(dialog.GetDlgItem(id)))
        for (int i = 0; i < combo->GetCount(); ++i)
            texts.push_back(combo->GetLBText(i));
    return texts;
}

int RunModal(CDialog& dialog, const std::function<void(CDialog&)>& act) {
    koqdde::ui::ModalHookScope hook([&](CDialog& d) {
        act(d);
        return d.GetEndResult();
    });
    return dialog.DoModal();
}

QWidget* MakeControl(QWidget* host, const CString& cls, int id, int x, int y, int cx, int cy,
                     const std::vector<const wchar_t*>& styles) {
    koqdde::ui::ControlTemplate ctl;
    ctl.id = id;
    ctl.cls = cls;
    ctl.x = x;
    ctl.y = y;
    ctl.cx = cx;
    ctl.cy = cy;
    for (const wchar_t* style : styles)
        ctl.styles.Add(style);
    const auto units = koqdde::ui::MeasureBaseUnits(koqdde::ui::DefaultDialogFont());
    return koqdde::ui::CreateControl(ctl, units, host);
}

QWidget* MakeComboBox(QWidget* host, int x, int width, bool dropdown) {
    if (dropdown)
        return MakeControl(host, L"combobox", 1022, x, 10, width, 80,
                           {L"dropdown", L"autohscroll"});
    return MakeControl(host, L"combobox", 1022, x, 10, width, 80, {L"droplist"});
}

} // namespace koqdde::test
