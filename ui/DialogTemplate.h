#pragma once
// Dialog templates: one text file per dialog in resources/, compiled into the library with the
// Qt resource system and loaded by name ("IDD_UI_DEMO") or by dialog id. The format is told in
// docs/ui-layer.md. Geometry is in dialog units and converted with the dialog font's metrics:
// a horizontal unit is a quarter of the average character width, a vertical unit an eighth of
// the character height.

#include "platform/CString.h"
#include "ui/Win.h"

#include <optional>
#include <string_view>
#include <vector>

class QFont;
class QWidget;

namespace koqdde::ui {

struct ControlTemplate {
    int id = -1;
    // button, default (a default push button), checkbox, radio, group, static, edit, listbox,
    // combobox, listview, treeview, tab, custom
    CString cls;
    CString text;
    int x = 0, y = 0, cx = 0, cy = 0; // dialog units
    CStringArray styles;              // lower-case flags: hidden, disabled, sorted, ...
    CStringArray items;               // initial entries of a list box or combo box
    bool HasStyle(const wchar_t* style) const;
};

struct DialogTemplate {
    CString name; // the file's base name, e.g. IDD_UI_DEMO
    int id = 0;
    int cx = 0, cy = 0; // client size in dialog units
    CString caption;
    CStringArray styles;
    CString fontFace;
    int fontPoints = 9;
    std::vector<ControlTemplate> controls;

    bool HasStyle(const wchar_t* style) const;
    const ControlTemplate* FindControl(int id) const;
};

// Parses the text of a template; on failure returns nothing and puts "line N: reason" in error.
std::optional<DialogTemplate> ParseDialogTemplate(std::string_view text, CString* error = nullptr);
// From the compiled-in resources (":/koqdde/dialogs/<name>.dlg"), or nothing.
std::optional<DialogTemplate> LoadDialogTemplate(const CString& name);
std::optional<DialogTemplate> LoadDialogTemplate(int id);
// Names of all compiled-in templates.
CStringArray DialogTemplateNames();

// Windows' MulDiv: a * b / c rounded half away from zero; c of 0 gives -1.
int MulDiv(int a, int b, int c);

// The base units of a font in pixels: baseX is the average width of the 52 letters, rounded,
// baseY the character height.
struct DialogBaseUnits {
    int baseX = 0;
    int baseY = 0;
    int ToPixelsX(int units) const { return MulDiv(units, baseX, 4); }
    int ToPixelsY(int units) const { return MulDiv(units, baseY, 8); }
    // x, y, cx, cy in dialog units to a pixel rectangle.
    CRect ToPixels(int x, int y, int cx, int cy) const;
};
DialogBaseUnits MeasureBaseUnits(const QFont& font);

// The dialog font: the template's face if installed, else the UI face "DejaVu Sans", with
// "Noto Sans CJK SC" behind it for the characters the face lacks; at the template's point size
// (9 by default). The base units come from the first face, as the window system measures a
// dialog's own font, so a 9-point dialog is about 7 by 14 pixels a unit pair, and the CJK
// text is drawn in the CJK face.
QFont DialogFont(const DialogTemplate& tmpl);
QFont DefaultDialogFont();

// Makes the template's controls as children of dialog, sets its font, caption and client size.
// Each control carries its id (ControlId) and the object name "ctl_<id>".
void BuildDialog(const DialogTemplate& tmpl, QWidget* dialog);
// Makes one control of a template (also for controls created at run time).
QWidget* CreateControl(const ControlTemplate& ctl, const DialogBaseUnits& units, QWidget* parent);

} // namespace koqdde::ui
