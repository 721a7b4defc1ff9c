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

QWidget* MakeComboBox(QWidget* host, int x, int width, bool dropdown) {
    koqdde::ui::ControlTemplate ctl;
    ctl.id = 1022;
    ctl.cls = L"combobox";
    ctl.x = x;
    ctl.y = 10;
    ctl.cx = width;
    ctl.cy = 80;
    ctl.styles.Add(dropdown ? L"dropdown" : L"droplist");
    if (dropdown)
        ctl.styles.Add(L"autohscroll");
    const auto units = koqdde::ui::MeasureBaseUnits(koqdde::ui::DefaultDialogFont());
    return koqdde::ui::CreateControl(ctl, units, host);
}

} // namespace koqdde::test
