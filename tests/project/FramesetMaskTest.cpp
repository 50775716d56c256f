#include "project/FramesetMask.h"

#include <random>

#include "platform/Text.h"
#include "platform/dom/Document.h"

namespace pw {
namespace {

struct MaskCase {
    const char* name;
    std::string html;
    std::string masked;
};

TEST(FramesetMask, HidesTheFramesetAndTheNoframesTags) {
    const MaskCase cases[] = {
        {"an ordinary page", "<html><body><p>frames</p></body></html>",
         "<html><body><p>frames</p></body></html>"},
        {"a frameset", "<html><frameset rows=\"*,1\"><frame></frameset></html>",
         "<html><!-- <frameset rows=\"*,1\"><frame></frameset> --></html>"},
        {"letters keep their case", "<FrameSet><NoFrames>a</NoFrames></FRAMESET>",
         "<!-- <FrameSet><!-- <NoFrames> -->a<!-- </NoFrames> --><!-- end </FRAMESET> -->"},
        {"nested ones are one block", "<frameset><frameset></frameset></frameset>",
         "<!-- <frameset><frameset></frameset></frameset> -->"},
        {"noframes without a frameset", "<noframes>a</noframes>", "<noframes>a</noframes>"},
        {"one that is not closed", "<frameset><frame>", "<!-- <frameset><frame>"},
        {"an end in front of the start", "</frameset><frameset>",
         "<!-- end </frameset> --><!-- <frameset>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CommentFrameset(c.html), c.masked);
        EXPECT_EQ(UncommentFrameset(c.masked), c.html);
    }
}

TEST(FramesetMask, GivesBackTheSameTextWhateverStandsInIt) {
    const char* pieces[] = {"<frameset",
                            "</frameset>",
                            "<FRAMESET>",
                            "<noframes>",
                            "</noframes>",
                            "<NOFRAMES>",
                            "<!-- ",
                            " -->",
                            "</FRAMESET> -->",
                            "text",
                            "<!-- <frameset",
                            "<!-- <noframes> -->",
                            "<!-- end ",
                            ">",
                            "\r\n",
                            "ä",
                            "<"};
    std::mt19937 random(20261122);
    for (int round = 0; round < 20000; ++round) {
        std::string html;
        for (auto length = random() % 12; length > 0; --length)
            html += pieces[random() % std::size(pieces)];
        if (CommentFrameset(html) == html) continue;
        ASSERT_EQ(UncommentFrameset(CommentFrameset(html)), html);
    }
}

TEST(FramesetMask, KeepsTheFramesetWhileTheRestIsEdited) {
    const std::string html =
        "<html><head><title>F</title></head>\n<frameset cols=\"*,1\">\n<frame src=a.htm>\n"
        "<noframes><body><p>x</p>\n</body></noframes>\n</frameset>\n</html>\n";
    const auto document = dom::Document::parseText(CommentFrameset(html));
    EXPECT_EQ(Trim(document->innerText(*document->body())), "x");
    document->setText(*document->tags("P").front()->firstChild(), "yy");
    EXPECT_EQ(UncommentFrameset(document->html()), ReplaceAll(html, ">x<", ">yy<"));
    document->insertAdjacentHTML(*document->body(), "beforeEnd", "<hr>");
    EXPECT_THAT(UncommentFrameset(document->html()),
                testing::HasSubstr("<hr></body></noframes>\n</frameset>\n</html>\n"));
}

TEST(FramesetMask, ExtractsTheBlock) {
    const std::string block = "<frameset><noframes>a</noframes></frameset>";
    EXPECT_EQ(ExtractFrameBlock("<html>" + block + "</html>"), block);
    EXPECT_EQ(ExtractFrameBlock(CommentFrameset("<html>" + block + "</html>")), block);
    EXPECT_EQ(ExtractFrameBlock("<html><frameset>"), "");
    EXPECT_EQ(ExtractFrameBlock("<html></frameset>"), "");
    EXPECT_EQ(ExtractFrameBlock("</frameset><frameset>"), "");
}

TEST(FramesetMask, TakesTimeInProportionToTheText) {
    std::string html = "<frameset>";
    while (html.size() < 20'000'000)
        html += "<<<<noframes><noframes></frameset";
    html += "</frameset>";
    EXPECT_EQ(UncommentFrameset(CommentFrameset(html)), html);
}

}  // namespace
}  // namespace pw
