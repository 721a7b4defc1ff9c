// The item pickers on the bundled pack, driven through their widgets as a user drives them:
// typing, double-clicks, Enter and the "选用" button, each reaching the parent window as a
// message with the picked record.

#include "host/datapack/DataPack.h"
#include "host/ui/QvPickers/QvPickers.h"
#include "tests/workbench/WorkbenchFixture.h"
#include "ui/QtString.h"

#include <QLabel>
#include <QLineEdit>

#include <optional>

using namespace workbench_test;
using koqdde::ui::FromQString;
using koqdde::ui::ToQString;

namespace {

// The bundled pack installed as the host: a bill-mode project whose libraries are the 2013
// bill library, the 2018 quota library that goes with it and the 2016 quota-mode library.
class BundledHost {
public:
    BundledHost() {
        DataPackOptions options;
        options.dataDir = BundledPackDir();
        options.configDir = config.File(L"cfg");
        CString error;
        EXPECT_TRUE(LoadDataPack(options, data, error)) << ToUtf8(error);
    }
    TempDir config;
    HostData data;

private:
    HostDataScope m_scope{&data};
};

// A parent window that keeps a copy of every pick it receives.
class PickRecorder : public CWnd {
public:
    PickRecorder() : CWnd(new QWidget) { SetOwnsWidget(true); }
    int picks = 0;
    std::optional<SQdInfo> bill;
    std::optional<SDeInfo> quota;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == kPickBillMessage)
            bill = *reinterpret_cast<const SQdInfo*>(wParam);
        else if (message == kPickQuotaMessage)
            quota = *reinterpret_cast<const SDeInfo*>(wParam);
        else
            return CWnd::WindowProc(message, wParam, lParam);
        ++picks;
        return 0;
    }
};

template <class T> T* Child(CWnd& picker, const char* name) {
    T* child = picker.widget()->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(child, nullptr) << name;
    return child;
}

std::vector<CString> Column(QTreeWidget* list, int column) {
    std::vector<CString> texts;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        texts.push_back(FromQString(list->topLevelItem(i)->text(column)));
    return texts;
}

QTreeWidgetItem* Row(QTreeWidget* list, const CString& number) {
    const auto rows = list->findItems(ToQString(number), Qt::MatchExactly);
    EXPECT_FALSE(rows.isEmpty()) << ToUtf8(number);
    return rows.value(0);
}

} // namespace

TEST(Picker, BillPickerOpensAtAPositionSearchesAndHandsOverBillsAndTheirQuotas) {
    BundledHost host;
    PickRecorder parent;
    CSelQdDeDlg picker;
    picker.SetShowGetQdNumDlg(false);
    ASSERT_TRUE(picker.Create(&parent));
    EXPECT_FALSE(picker.IsWindowVisible());
    picker.ShowWindow(SW_SHOW);
    picker.MoveWndToRight(&parent);
    picker.InitQdDeData();
    auto* items = Child<QTreeWidget>(picker, "pickerItems");
    auto* quotas = Child<QTreeWidget>(picker, "pickerQuotas");
    auto* search = Child<QLineEdit>(picker, "pickerSearch");
    ASSERT_TRUE(items && quotas && search);

    // The position the workbench hands over: chapter codes from the root.
    picker.SetTreePosition(L"0310.031003");
    EXPECT_EQ(picker.GetTreePosition(), L"0310.031003");
    ASSERT_GT(items->topLevelItemCount(), 5);
    for (const CString& number : Column(items, 0))
        EXPECT_EQ(number.Left(6), L"031003");
    picker.SetTreePosition(L"");
    picker.SetTreePosition(L"给排水.管道.给水管");
    EXPECT_EQ(picker.GetTreePosition(), L"0310.031003") << "an unknown position moves nothing";
    picker.SetTreePosition(L"0310\\031001");
    EXPECT_EQ(picker.GetTreePosition(), L"0310.031001");

    // Typed as the user types: the list answers for two characters, then for three.
    PressKey(search, 0, QStringLiteral("阀门"));
    const std::vector<CString> valves = Column(items, 1);
    ASSERT_GE(valves.size(), 8u);
    for (const CString& name : valves)
        EXPECT_NE(name.Find(L"阀门"), -1) << ToUtf8(name);
    PressKey(search, 0, QStringLiteral("焊"));
    EXPECT_TRUE(Column(items, 0).empty()) << "阀门焊 is in no name";
    picker.SearchFor(L"法兰阀门");
    EXPECT_EQ(Column(items, 0), (std::vector<CString>{L"031003002", L"031003003"}));
    EXPECT_EQ(quotas->topLevelItemCount(), 0);

    // A double-click on a bill hands it over as the library has it, and shows its quotas.
    ClickRow(items, Row(items, L"031003003"), true);
    ASSERT_EQ(parent.picks, 1);
    ASSERT_TRUE(parent.bill);
    SQdInfo library;
    ASSERT_TRUE(IBillLib::GetQdInfo(L"031003003", library));
    EXPECT_EQ(Fields(*parent.bill), Fields(library));
    EXPECT_TRUE(Fields(library).starts_with("031003003|焊接法兰阀门|个|N|")) << Fields(library);
    EXPECT_EQ(parent.bill->nId, library.nId);
    EXPECT_EQ(Column(quotas, 0), std::vector<CString>{L"10-3-4"});

    // A double-click on one of the bill's quotas hands the quota over; so does Enter.
    ClickRow(quotas, Row(quotas, L"10-3-4"), true);
    ASSERT_EQ(parent.picks, 2);
    ASSERT_TRUE(parent.quota);
    EXPECT_EQ(Fields(*parent.quota), "10-3-4|焊接法兰阀门安装 DN100|个|N|1|0");
    items->setCurrentItem(Row(items, L"031003002"));
    EXPECT_EQ(Column(quotas, 0), std::vector<CString>{L"10-3-3"});
    quotas->setCurrentItem(Row(quotas, L"10-3-3"));
    PressKey(quotas, Qt::Key_Return);
    ASSERT_EQ(parent.picks, 3);
    EXPECT_EQ(parent.quota->strDeNum, L"10-3-3");
    PressKey(items, Qt::Key_Enter);
    ASSERT_EQ(parent.picks, 4);
    EXPECT_EQ(parent.bill->strQdNum, L"031003002");

    // A number finds from its start; a chapter chosen ends the search.
    picker.SearchFor(L"0310010");
    ASSERT_FALSE(Column(items, 0).empty());
    for (const CString& number : Column(items, 0))
        EXPECT_EQ(number.Left(7), L"0310010");
    picker.SetTreePosition(L"0310.031004");
    EXPECT_TRUE(search->text().isEmpty());
    EXPECT_EQ(Column(items, 0).front().Left(6), L"031004");
    EXPECT_TRUE(picker.ChooseItem(Column(items, 0).front()));
    EXPECT_EQ(parent.bill->strQdNum, Column(items, 0).front());
    EXPECT_FALSE(picker.ChooseItem(L"031003003")) << "not in the list now";
    EXPECT_EQ(parent.picks, 5);
}

TEST(Picker, QuotaPickerBrowsesTheQuotaModeLibraryWhileItsMainControlIsEnabled) {
    BundledHost host;
    PickRecorder parent;
    CSelDeDlg picker;
    ASSERT_TRUE(picker.Create(&parent));
    EXPECT_FALSE(picker.Create(&parent)) << "one window";
    picker.ShowWindow(SW_SHOW);
    picker.InitDeData();
    auto* items = Child<QTreeWidget>(picker, "pickerItems");
    auto* chapters = Child<QTreeWidget>(picker, "pickerChapters");
    ASSERT_TRUE(items && chapters);
    EXPECT_EQ(picker.widget()->findChild<QTreeWidget*>(QStringLiteral("pickerQuotas")), nullptr);
    EXPECT_EQ(FromQString(Child<QLabel>(picker, "pickerStatus")->text()),
              L"示范省安装工程计价定额(2016)");
    ASSERT_GT(chapters->topLevelItemCount(), 1);
    EXPECT_EQ(FromQString(chapters->topLevelItem(0)->text(0)), L"8 第八册 给排水、采暖、燃气工程");

    // With the main control disabled nothing can be typed or chosen.
    picker.EnableMainControl(FALSE);
    picker.SearchFor(L"镀锌");
    EXPECT_EQ(items->topLevelItemCount(), 0);
    PressKey(Child<QLineEdit>(picker, "pickerSearch"), 0, QStringLiteral("镀锌"));
    EXPECT_EQ(items->topLevelItemCount(), 0);

    picker.EnableMainControl();
    picker.SearchFor(L"镀锌");
    ASSERT_GE(items->topLevelItemCount(), 8);
    EXPECT_EQ(Column(items, 0).front(), L"8-1");
    ASSERT_TRUE(picker.ChooseItem(L"8-2"));
    ASSERT_EQ(parent.picks, 1);
    ASSERT_TRUE(parent.quota);
    EXPECT_FALSE(parent.bill);
    EXPECT_EQ(Fields(*parent.quota), "8-2|室内镀锌钢管(螺纹连接) 公称直径20mm以内|10m|L|10|1");
    picker.EnableMainControl(FALSE);
    EXPECT_FALSE(picker.ChooseItem(L"8-3"));
    EXPECT_EQ(parent.picks, 1);

    // Shown again on another project's library: the tree follows.
    host.data.project.quota.code = L"{NONE}";
    picker.InitDeData();
    EXPECT_EQ(chapters->topLevelItemCount(), 0);
    EXPECT_EQ(items->topLevelItemCount(), 0);
}

TEST(Picker, APickerOutlivesItsParentWindowAndSendsNothingWithoutIt) {
    BundledHost host;
    CSelDeDlg picker;
    {
        PickRecorder parent;
        ASSERT_TRUE(picker.Create(&parent));
        picker.InitDeData();
        EXPECT_EQ(picker.GetPickParent(), &parent);
    }
    EXPECT_FALSE(picker.IsWindow()) << "the window went with its parent's";
    picker.SearchFor(L"镀锌");
    EXPECT_FALSE(picker.ChooseItem(L"8-1"));
}
