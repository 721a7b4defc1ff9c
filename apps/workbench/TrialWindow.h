#pragma once
// "试算": which configuration a component receives, tried on the workbench's open configuration
// as the user describes the component. The user picks a small category and fills in its
// attributes (each a drop-down of the category's list that also takes typed text); the window
// lists the category's configurations with each condition's verdict, highlights the one the
// component receives, and shows that configuration's bill and quota items. Every change of a
// value tries again, and so does coming back to the window after an edit in the workbench.
//
// Object names, for tests that act as a user: "trialCategory" (QComboBox), "trialValue" (one
// editable QComboBox per attribute, its accessible name the attribute's), "trialConfigs"
// (QTreeWidget: a row per configuration, "序号", "条件", "结果", a child row per condition),
// "trialWinner" (QLabel), "trialItems" (QTreeWidget: bills with their quotas as children).

#include "model/CPath.h"
#include "platform/CString.h"

#include <QWidget>

#include <utility>
#include <vector>

class CQdDeConfigPresenter;
class QComboBox;
class QLabel;
class QTreeWidget;
class QVBoxLayout;

class TrialWindow : public QWidget {
public:
    // A tool window of `parent` (the workbench's window), on `category` ("专业\大类\小类"), or on
    // the first small category when that is empty or unknown.
    TrialWindow(CQdDeConfigPresenter& presenter, const CString& category, QWidget* parent);

    // Tries the configurations of the chosen category again on the values as they stand.
    void Evaluate();
    // Fills in an attribute's field as typing does (and so tries again); false when the
    // category has no such attribute.
    bool GiveValue(const CString& attribute, const CString& value);

protected:
    void changeEvent(QEvent* event) override;

private:
    void FillCategories(const CString& chosen);
    // The attribute fields of the chosen category; values already given are kept by name.
    void FillAttributes();
    std::vector<CString> FieldNames() const;
    bool ChosenCategory(CPath& path, CString& name) const;

    CQdDeConfigPresenter& m_presenter;
    QComboBox* m_category = nullptr;
    QWidget* m_form = nullptr;
    QVBoxLayout* m_formHolder = nullptr;
    std::vector<std::pair<CString, QComboBox*>> m_fields;
    QTreeWidget* m_configs = nullptr;
    QLabel* m_winner = nullptr;
    QTreeWidget* m_items = nullptr;
};
