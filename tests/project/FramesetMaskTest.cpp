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
         "<!-- <FrameSet><!-- <NoFrames> -->a</body><!-- body --><!-- </NoFrames> -->"
         "<!-- end </FRAMESET> -->"},
        {"nested ones are one block", "<frameset><frameset></frameset></frameset>",
         "<!-- <frameset><frameset></frameset></frameset> -->"},
        {"noframes without a frameset", "<noframes>a</noframes>", "<noframes>a</noframes>"},
        {"one that is not closed", "<frameset><frame>", "<!-- <frameset><frame> -->"},
        {"an end in front of the start", "</frameset><frameset>", "</frameset><!-- <frameset> -->"},
        {"as it is told, around a body",
         "<frameset>\n<frame>\n<noframes><body>a</body></noframes>\n</frameset>",
         "<!-- <frameset>\n<frame>\n<!-- <noframes> --><body>a</body><!-- </noframes> -->\n"
         "<!-- end </frameset> -->"},
        {"a comment in it, and one that reads like a spelled one",
         "<frameset><!-- a --><!-- b --&gt; --!&amp;gt; --><frame></frameset>",
         "<!-- <frameset><!-- a --&gt;<!-- b --&amp;gt; --!&amp;amp;gt; --&gt;<frame></frameset> "
         "-->"},
        {"noframes in front of the frames, with an attribute",
         "<frameset><noframes id=n><body>a</body></noframes><frame></frameset>",
         "<!-- <frameset><!-- <noframes id=n> --><body>a</body><!-- </noframes><frame></frameset> "
         "-->"},
        {"noframes in front of the frameset",
         "<head></head><noframes><body>a</body></noframes><frameset></frameset>",
         "<head></head><!-- <noframes> --><body>a</body><!-- </noframes><frameset></frameset> -->"},
        {"of two the one with a body",
         "<frameset><noframes>b</noframes><frame><noframes><body>a</body></noframes></frameset>",
         "<!-- <frameset><noframes>b</noframes><frame><!-- <noframes> --><body>a</body>"
         "<!-- </noframes> --><!-- end </frameset> -->"},
        {"a noframes that would swallow the mask",
         "<frameset><noframes><script>a</noframes></frameset>",
         "<!-- <frameset><noframes><script>a</noframes></frameset> -->"},
        {"a noframes with a head of its own",
         "<frameset><noframes><title>t</title>a</noframes></frameset>",
         "<!-- <frameset><noframes><title>t</title>a</noframes></frameset> -->"},
        {"an old one in a comment and in a script",
         "<script>'<frameset>'</script><!-- <frameset></frameset> --><frameset></frameset>",
         "<script>'<frameset>'</script><!-- own <frameset></frameset> -->"
         "<!-- <frameset></frameset> -->"},
        {"an old one alone", "<!-- <frameset></frameset> --><p>x",
         "<!-- own <frameset></frameset> --><p>x"},
        {"a body behind it", "<frameset></frameset><body>a</body></html>",
         "<!-- <frameset></frameset> --><body>a</body></html>"},
        {"a paragraph in front of it", "<html><p><frameset></frameset></html>",
         "<html><!-- masked <p><frameset></frameset></html> -->"},
        {"text in an attribute that looks like a tag", "<p title='<frameset>'>a",
         "<p title='<frameset>'>a"},
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
                            "<body>",
                            "</body>",
                            "<!-- body -->",
                            "--&gt;",
                            "own ",
                            ">",
                            "\r\n",
                            "ä",
                            "<"};
    std::mt19937 random(20261122);
    for (int round = 0; round < 20000; ++round) {
        std::string html;
        for (auto length = random() % 12; length > 0; --length)
            html += pieces[random() % std::size(pieces)];
        ASSERT_EQ(UncommentFrameset(CommentFrameset(html)), html) << html;
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

TEST(FramesetMask, PutsANewTitleIntoTheHead) {
    for (const std::string html : {"<frameset><noframes><body>x</body></noframes></frameset>",
                                   "<link href=a.css><frameset></frameset>"}) {
        const auto document = dom::Document::parseText(CommentFrameset(html));
        document->insertAdjacentHTML(*document->head(), "beforeEnd", "<title>T</title>");
        EXPECT_EQ(UncommentFrameset(document->html()),
                  ReplaceAll(html, "<frameset>", "<title>T</title><frameset>"));
    }
}

TEST(FramesetMask, ReadsAndWritesTheDataOfAMask) {
    const std::string frameset = "<frameset cols=\"*,1\"><frame src=a.htm>\n<noframes>";
    const auto page = dom::Document::parseText(CommentFrameset(frameset + "<p>x</noframes>"));
    const std::string data = page->tags("!").front()->data();
    EXPECT_EQ(FramesetOfMask(data), frameset);
    EXPECT_EQ(MaskOfFrameset(frameset), data);
    EXPECT_EQ(FramesetOfMask(" note: <frameset> "), std::nullopt);
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
    while (html.size() < 4'000'000)
        html += "<<<<noframes><noframes></frameset";
    html += "</frameset>";
    EXPECT_EQ(UncommentFrameset(CommentFrameset(html)), html);
}

}  // namespace
}  // namespace pw
