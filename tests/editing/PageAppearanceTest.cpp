#include "editing/PageAppearance.h"

#include <gtest/gtest.h>

#include <functional>

namespace pw {
namespace {

using Looks = PageAppearance;

std::string Page(const std::string& head, const std::string& body) {
    return "<HTML><head>" + head + "</head>\n<BODY" + body + ">text</BODY></HTML>\n";
}

TEST(PageAppearance, WritesWhatIsToBeOtherwiseAndNothingElse) {
    struct Row {
        const char* name;
        std::string before;
        std::function<void(Looks&)> change;
        std::string after;
    };
    const Row rows[] = {
        {"nothing", Page("", " BGCOLOR=White  text='#000'"), [](Looks&) {},
         Page("", " BGCOLOR=White  text='#000'")},
        {"a colour that was not told", Page("", ""),
         [](Looks& looks) { looks.colors[kLinkColor] = 0x0000FF; }, Page("", " link=\"#ff0000\"")},
        {"a colour told by name", Page("", " bgcolor=navy vlink=gray"),
         [](Looks& looks) { looks.colors[kPageColor] = 0x0000FF; },
         Page("", " bgcolor=#ff0000 vlink=gray")},
        {"a picture that stays", Page("", ""),
         [](Looks& looks) {
             looks.background = "media/sky.gif";
             looks.watermark = true;
         },
         Page("", " background=\"media/sky.gif\" bgproperties=\"fixed\"")},
        {"no picture any more", Page("", " background=a.gif bgProperties=FIXED id=b"),
         [](Looks& looks) {
             looks.background.clear();
             looks.watermark = false;
         },
         Page("", " id=b")},
        {"a margin of none", Page("", ""), [](Looks& looks) { looks.margins[kTopMargin] = 0; },
         Page("", " topmargin=\"0\"")},
        {"no margin any more", Page("", " leftmargin=7"),
         [](Looks& looks) { looks.margins[kLeftMargin].reset(); }, Page("", "")},
        {"a sound", Page("<title>t</title>", ""),
         [](Looks& looks) {
             looks.sound = "media/a.mid";
             looks.loop = 3;
         },
         Page("<title>t</title><bgsound src=\"media/a.mid\" loop=\"3\">", "")},
        {"a sound for ever", Page("<bgsound src=a.mid>", ""),
         [](Looks& looks) { looks.loop = Looks::kEndless; },
         Page("<bgsound src=a.mid loop=\"infinite\">", "")},
        {"another sound", Page("<bgsound loop=-1 src=a.mid>", ""),
         [](Looks& looks) { looks.sound = "b.mid"; }, Page("<bgsound loop=-1 src=b.mid>", "")},
        {"no sound any more", Page("<bgsound src=a.mid><bgsound src=b.mid>", ""),
         [](Looks& looks) { looks.sound.clear(); }, Page("", "")},
    };
    for (const Row& row : rows) {
        const auto document = dom::Document::parse(row.before);
        Looks wanted = ReadAppearance(*document);
        row.change(wanted);
        WriteAppearance(*document, wanted);
        const std::string written = document->html();
        EXPECT_EQ(written, row.after) << row.name;
        EXPECT_EQ(ReadAppearance(*document), wanted) << row.name;
        EXPECT_EQ(document->canUndo(), row.before != row.after) << row.name;
        document->undo();
        EXPECT_EQ(document->html(), row.before) << row.name;
    }
}

TEST(PageAppearance, IsReadFromWhateverAPageSays) {
    struct Row {
        const char* name;
        std::string page;
        int loop;
        std::optional<int> margin;
    };
    const Row rows[] = {
        {"garbage", Page("<bgsound src=a loop=often>", " leftmargin=wide"), 1, 0},
        {"far too much", Page("<bgsound src=a loop=99999999999>", " leftmargin=99999999999"), 99999,
         99999},
        {"never", Page("<bgsound src=a loop=0>", ""), 1, std::nullopt},
        {"endless", Page("<bgsound src=a loop=Infinite>", ""), Looks::kEndless, std::nullopt},
    };
    for (const Row& row : rows) {
        const Looks looks = ReadAppearance(*dom::Document::parse(row.page));
        EXPECT_EQ(looks.loop, row.loop) << row.name;
        EXPECT_EQ(looks.margins[kLeftMargin], row.margin) << row.name;
    }
}

TEST(PageAppearance, IsNoMatterOfAFrameset) {
    const std::string page = "<html><frameset cols=*><frame src=a.htm></frameset></html>";
    const auto document = dom::Document::parse(page);
    EXPECT_FALSE(HasAppearance(*document));
    Looks wanted = ReadAppearance(*document);
    wanted.background = "a.gif";
    wanted.sound = "a.mid";
    WriteAppearance(*document, wanted);
    EXPECT_EQ(document->html(), page);
}

}  // namespace
}  // namespace pw
