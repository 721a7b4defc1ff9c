#include "model/Spec.h"
#include "model/XmlFixture.h"
#include "support/TestHost.h"

#include <gtest/gtest.h>

namespace {
std::vector<std::wstring> Shape(const Spec& spec) {
    std::vector<std::wstring> out;
    for (LMember* large : spec.GetAllLMember()) {
        std::wstring line = large->GetName().str() + L"(" + std::to_wstring(large->GetId()) + L"):";
        for (SMember* small : large->GetAllSMember())
            line += L" " + small->GetName().str() + L"(" + std::to_wstring(small->GetId()) + L")#" +
                    std::to_wstring(small->GetAllConfig().size());
        out.push_back(line);
    }
    return out;
}

void TwoByThree(TestHost& host) {
    for (const wchar_t* small : {L"给水管", L"排水管", L"雨水管"})
        host.Add(L"给排水", L"管道", small, 1);
    for (const wchar_t* small : {L"阀门", L"水表", L"过滤器"})
        host.Add(L"给排水", L"阀门仪表", small, 2);
}
} // namespace

TEST(CategoryTree, ProjectDecidesWhatIsReadAndInWhichOrder) {
    TestHost host;
    TwoByThree(host);
    XmlSnippet xml(
        "<给排水 id='2' name='给排水'>"
        "<LMember id='77' name='阀门仪表'>"
        "<SMember name='水表'><Config><Config id='5' bDefault='0'/><Config id='1' bDefault='1'/>"
        "</Config></SMember>"
        "<其它 name='阀门'><Config><x id='3' bDefault='0'/><y id='1' bDefault='1'/></Config></其它>"
        "<SMember name='阀门'><Config><Config id='9'/><Config id='1' bDefault='1'/></Config>"
        "</SMember>"
        "<SMember name='已删除的小类'><Config><Config id='4'/></Config></SMember>"
        "</LMember>"
        "<!-- a comment -->"
        "<LMember id='1' name='老名字'><SMember name='给水管'/></LMember>"
        "</给排水>");
    Spec spec;
    spec.SetSpecName(L"给排水");
    ASSERT_TRUE(spec.ReadData(xml.Root()));
    // The project's order wins, ids are the project's, unknown and renamed categories vanish,
    // and of two elements of one name the first wins, whatever its tag.
    EXPECT_EQ(Shape(spec),
              (std::vector<std::wstring>{L"管道(1): 给水管(101)#1 排水管(102)#1 雨水管(103)#1",
                                         L"阀门仪表(2): 阀门(201)#2 水表(202)#2 过滤器(203)#1"}));
    EXPECT_EQ(spec.GetLMember(77), nullptr);
    EXPECT_NE(spec.GetLMember(2)->GetSMember(201)->GetConfig(3), nullptr);
    EXPECT_EQ(spec.GetLMember(2)->GetSMember(201)->GetConfig(9), nullptr);

    XmlSnippet out("<x/>");
    XmlNode written = out.NewElement("给排水");
    spec.WriteData(written);
    std::string text = out.Serialised(written);
    EXPECT_EQ(text.find("已删除的小类"), std::string::npos);
    EXPECT_EQ(text.find("老名字"), std::string::npos);
    EXPECT_LT(text.find("管道"), text.find("阀门仪表"));
}

TEST(CategoryTree, ProjectRefusalsEmptyListsAndSharedCategories) {
    TestHost host;
    TwoByThree(host);
    host.AddSpec(L"电气");
    XmlSnippet xml("<电气 id='3' name='电气'><LMember name='x'/></电气>");
    Spec empty;
    empty.SetSpecName(L"电气");
    EXPECT_TRUE(empty.ReadData(xml.Root())) << "no large categories, but the project answered";
    EXPECT_TRUE(empty.GetAllLMember().empty());

    Spec unknown;
    unknown.SetSpecName(L"不存在的专业");
    EXPECT_FALSE(unknown.ReadData(xml.Root()));
    EXPECT_TRUE(unknown.GetAllLMember().empty());

    // The categories outlive the Spec they came from while another one holds them.
    XmlSnippet water("<给排水 id='2' name='给排水'/>");
    Spec second;
    {
        Spec first;
        first.SetSpecName(L"给排水");
        first.ReadData(water.Root());
        second = first;
        EXPECT_EQ(second.GetLMember(1), first.GetLMember(1));
        EXPECT_EQ(second.GetSpecName(), L"给排水");
    }
    EXPECT_EQ(second.GetLMember(1)->GetName(), L"管道");
    EXPECT_EQ(second.GetLMember(1)->GetAllSMember().size(), 3u);
}
