#include "platform/FileSystem.h"
#include "platform/ProfileIni.h"
#include "presenter/CQdDeConfigPresenter.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

namespace {

CPath Config(int configId) {
    CPath path;
    path.SpecId = 2;
    path.LMemberId = 1;
    path.SMemberId = 101;
    path.ConfigId = configId;
    return path;
}

CStringArray ValueCondition(const CString& flag) {
    return {L"材质", flag, L"＝", L"", L"", L"镀锌钢管", L"", L""};
}

const char* const kValidFile = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
                               "<自动套清单定额配置信息 Version=\"1.0.0\"/>";

// A host whose current specialty has one large category of two small ones.
class PresenterFiles : public ::testing::Test {
protected:
    PresenterFiles() {
        host.Add(L"给排水", L"管道", L"给水管", 1, 101);
        host.Add(L"给排水", L"管道", L"排水管", 1, 102);
    }
    TestHost host;
};
using PresenterEdits = PresenterFiles;

} // namespace

TEST_F(PresenterFiles, EmptyArgumentOpensTheRecordedConfigurationInTheFolder) {
    {
        CQdDeConfigPresenter presenter;
        EXPECT_EQ(presenter.GetCurConfig(), L"DefaultConfig");
        EXPECT_EQ(presenter.GetCurConfigDetailPath(), host.DefaultConfigFile());
        EXPECT_EQ(presenter.GetData()->GetFilePath(), host.DefaultConfigFile());
        EXPECT_TRUE(PathExists(host.DefaultConfigFile()));
        EXPECT_FALSE(PathExists(host.ProjectDir() + L"/SysRegedit.ini")) << "nothing recorded";

        CString other = host.dir.Write(L"elsewhere/abc.def.xml", kValidFile);
        ASSERT_TRUE(presenter.ReLoad(other));
        EXPECT_EQ(presenter.GetCurConfig(), L"abc.def");
        CString stored;
        GetPrivateProfileStringW(L"qddeconfiginfo", L"CONFIGNAME", L"", stored, 100,
                                 host.ProjectDir() + L"/SysRegedit.ini");
        EXPECT_EQ(stored, L"abc.def");
        // SaveAs leaves the record alone.
        ASSERT_TRUE(presenter.SaveAs(host.dir.File(L"copy.xml")));
        EXPECT_EQ(presenter.GetCurConfig(), L"abc.def");
    }
    // Only the bare name is recorded: the next presenter opens the file of that name in the
    // configuration folder, not the one opened from elsewhere.
    CQdDeConfigPresenter next;
    CString expected = host.ConfigDir() + L"/自动套配置/abc.def.xml";
    EXPECT_EQ(next.GetData()->GetFilePath(), expected);
}

TEST_F(PresenterFiles, RecordedNamesWithoutExtensionOrTooLong) {
    CQdDeConfigPresenter presenter(host.dir.File(L"start.xml"));
    EXPECT_EQ(presenter.GetData()->GetFilePath(), host.dir.File(L"start.xml"));
    ASSERT_TRUE(PathExists(host.dir.File(L"start.xml")));
    EXPECT_FALSE(PathExists(host.ConfigDir() + L"/自动套配置"))
        << "an explicit file needs no folder";

    // A name is recorded first, so that the load below has something to overwrite.
    const CString ini = host.ProjectDir() + L"/SysRegedit.ini";
    ASSERT_TRUE(presenter.ReLoad(host.dir.Write(L"named.xml", kValidFile)));
    EXPECT_EQ(presenter.GetCurConfig(), L"named");
    CString bare = host.dir.Write(L"noextension", kValidFile);
    ASSERT_TRUE(presenter.ReLoad(bare));
    CString stored = L"unread";
    GetPrivateProfileStringW(L"QdDeConfigInfo", L"ConfigName", L"absent", stored, 100, ini);
    EXPECT_EQ(stored, L"") << "a name without a full stop is recorded as empty";
    EXPECT_EQ(presenter.GetCurConfig(), L"DefaultConfig");

    CString longName(L'长', 120);
    WritePrivateProfileStringW(L"QdDeConfigInfo", L"ConfigName", longName, ini);
    EXPECT_EQ(presenter.GetCurConfig(), longName.Left(99));

    EXPECT_FALSE(presenter.ReLoad(host.dir.File(L"missing.xml")));
    EXPECT_EQ(presenter.GetCurConfig(), longName.Left(99)) << "a failed load records nothing";

    // A record that is no bare file name is not followed out of the configuration folder.
    for (const wchar_t* name : {L"../../escape", L"sub/x", L"sub\\x", L"..", L"tab\tname"}) {
        WritePrivateProfileStringW(L"QdDeConfigInfo", L"ConfigName", name, ini);
        EXPECT_EQ(presenter.GetCurConfig(), L"DefaultConfig") << ToUtf8(CString(name));
    }
    WritePrivateProfileStringW(L"QdDeConfigInfo", L"ConfigName", L"../../escape", ini);
    CQdDeConfigPresenter current;
    EXPECT_EQ(current.GetData()->GetFilePath(),
              host.ConfigDir() + L"/自动套配置/DefaultConfig.xml");
}

TEST_F(PresenterFiles, ProjectPathWithoutSeparatorRecordsAtTheRoot) {
    // The folder of "test.kprj" is empty, so the record is "/SysRegedit.ini".
    const CString rootIni = L"/SysRegedit.ini";
    if (access("/", W_OK) != 0)
        GTEST_SKIP() << "the file system root is not writable here";
    if (PathExists(rootIni))
        GTEST_SKIP() << "a record at the root already exists; not touching it";
    host.data.project.path = L"test.kprj";
    {
        CQdDeConfigPresenter presenter(host.dir.File(L"start.xml"));
        ASSERT_TRUE(presenter.ReLoad(host.dir.Write(L"solo.cfg.xml", kValidFile)));
        EXPECT_EQ(presenter.GetCurConfig(), L"solo.cfg");
    }
    CString stored;
    GetPrivateProfileStringW(L"QdDeConfigInfo", L"ConfigName", L"", stored, 100, rootIni);
    std::remove(ToUtf8(rootIni).c_str());
    EXPECT_EQ(stored, L"solo.cfg");
}

TEST_F(PresenterFiles, RefreshReportsMismatchOnly) {
    CString good = host.dir.Write(L"good.xml", kValidFile);
    CString error = L"untouched";
    EXPECT_TRUE(RefreshAutoConfig(error, good));
    EXPECT_EQ(error, L"untouched");
    EXPECT_EQ(CQdDeConfigPresenter::GetCurConfig(), L"good");

    EXPECT_FALSE(RefreshAutoConfig(error, host.dir.File(L"gone.xml")));
    EXPECT_EQ(error, L"文件功能不匹配");
    EXPECT_EQ(host.messages.Texts(), std::vector<CString>{L"文件不存在，请重新选择调用文件!"});
}

TEST_F(PresenterEdits, ConditionArraysAreCheckedAndParsedAndBillNumbersListed) {
    CQdDeConfigPresenter presenter(host.dir.File(L"c.xml"));
    int id = 0;
    ASSERT_TRUE(presenter.AddConfig(Config(CPath::kNone), id));
    CPath path = Config(id);

    CStringArray seven = ValueCondition(L"1");
    seven.RemoveAt(7);
    EXPECT_FALSE(presenter.AddCondition(path, seven));
    EXPECT_TRUE(presenter.GetConfig(path)->GetCondition().empty());

    CStringArray nine = ValueCondition(L"2");
    nine.Add(L"ignored");
    ASSERT_TRUE(presenter.AddCondition(path, nine));
    ASSERT_TRUE(presenter.AddCondition(path, ValueCondition(L"abc")));
    auto conditions = presenter.GetConfig(path)->GetCondition();
    ASSERT_EQ(conditions.size(), 2u);
    EXPECT_TRUE(conditions[0]->IsEqual());
    EXPECT_FALSE(conditions[1]->IsEqual());
    EXPECT_EQ(conditions[1]->GetConditionString(), L"材质");

    path.ConditionId = 2;
    ASSERT_TRUE(
        presenter.ResetCondition(path, {L"管径", L"0", L"", L"＞", L"≤", L"", L"20", L"50"}));
    EXPECT_EQ(presenter.GetConfig(path)->GetConditionString(), L"材质＝镀锌钢管;20＜管径≤50;");
    EXPECT_FALSE(presenter.ResetCondition(path, seven));

    std::vector<ConfigNode*> configs;
    path.ConditionId = 42;
    EXPECT_TRUE(presenter.DelCondition(path, configs)) << "the configuration exists";
    EXPECT_EQ(configs.size(), 2u);
    path.ConditionId = 1;
    EXPECT_TRUE(presenter.DelCondition(path, configs));
    EXPECT_EQ(presenter.GetConfig(path)->GetCondition().size(), 1u);

    // The bill numbers in use, as the numbering dialog counts them: each item once.
    QdStruct qd;
    qd.strQdId = L"031001001001";
    ASSERT_TRUE(presenter.AddQd(qd, path, configs));
    ASSERT_TRUE(presenter.AddQd(qd, path, configs));
    std::vector<CString> numbers;
    ASSERT_TRUE(presenter.GetExistQdIndex(path, numbers));
    EXPECT_EQ(numbers, (std::vector<CString>{L"031001001001", L"031001001001"}));
}

TEST_F(PresenterEdits, PathsOfAnotherSpecialtyChangeNothing) {
    host.Add(L"电气", L"管道", L"给水管", 1, 101);
    const CString file = host.dir.File(L"o.xml");
    CQdDeConfigPresenter presenter(file);
    // The current specialty's category has the same large, small, configuration, condition,
    // bill and quota ids as the path of the other specialty: an edit that ignored the
    // specialty would land here.
    std::vector<ConfigNode*> configs;
    ASSERT_TRUE(presenter.AddCondition(Config(1), ValueCondition(L"1")));
    ASSERT_TRUE(presenter.AddQd(QdStruct(), Config(1), configs));
    CPath bill = Config(1);
    bill.QdId = 1;
    ASSERT_TRUE(presenter.AddDe2QdNode(DeStruct(), bill, configs));
    ASSERT_TRUE(presenter.AddDe2ConfigNode(DeStruct(), Config(1), configs));
    ASSERT_TRUE(presenter.Save());
    const auto before = ReadFileBytes(file);
    ASSERT_TRUE(before);

    CPath other = Config(1);
    other.SpecId = 3;
    other.QdId = 1;
    other.DeId = 1;
    other.ConditionId = 1;
    int id = -1;
    ConfigNode sentinel;
    configs = {&sentinel};
    std::vector<CString> numbers;
    EXPECT_FALSE(presenter.GetExistQdIndex(other, numbers));
    EXPECT_FALSE(presenter.AddConfig(other, id));
    EXPECT_FALSE(presenter.AddConfigByCopy(other, id));
    EXPECT_FALSE(presenter.MoveUpConfig(other));
    EXPECT_FALSE(presenter.MoveDownConfig(other));
    EXPECT_FALSE(presenter.DelConfig(other));
    EXPECT_FALSE(presenter.AddCondition(other, ValueCondition(L"1")));
    EXPECT_FALSE(presenter.ResetCondition(other, ValueCondition(L"0")));
    EXPECT_FALSE(presenter.DelCondition(other, configs));
    EXPECT_FALSE(presenter.AddQd(QdStruct(), other, configs));
    EXPECT_FALSE(presenter.AddDe2QdNode(DeStruct(), other, configs));
    EXPECT_FALSE(presenter.AddDe2ConfigNode(DeStruct(), other, configs));
    EXPECT_EQ(configs, std::vector<ConfigNode*>{&sentinel}) << "a refused edit hands out nothing";
    EXPECT_FALSE(presenter.DelQd(other, {1}));
    // Always true, but it must not reach the bill of the current specialty either.
    EXPECT_TRUE(presenter.DelDeInQdNode(other, {{1, {1}}}));
    EXPECT_FALSE(presenter.DelDeInConfigNode(other, {1}));
    QdStruct renamed;
    renamed.strName = L"改名";
    DeStruct quota;
    quota.strName = L"改名";
    EXPECT_FALSE(presenter.ResetQd(other, renamed));
    EXPECT_FALSE(presenter.ResetDeToConfig(other, quota));
    EXPECT_FALSE(presenter.ResetDeToQd(other, quota));

    ASSERT_TRUE(presenter.Save());
    EXPECT_EQ(ReadFileBytes(file), before) << "the current specialty is untouched";
}
