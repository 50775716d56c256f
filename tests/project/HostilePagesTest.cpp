// Pages that name what is not theirs, and pages that are no whole pages: they are taken in, edited,
// saved, renamed and published. What a row says stands; everything else is as it was, byte for
// byte, and nothing from outside of the folder is in the project.
#include <sys/stat.h>

#include <fstream>

#include "platform/Text.h"
#include "project/AddFiles.h"
#include "project/Attachments.h"
#include "project/Links.h"
#include "project/PublishHTML.h"
#include "support/TestProject.h"

namespace pw {
namespace {

namespace fs = std::filesystem;

struct Row {
    const char* name;
    std::string before;
    std::string after = {};  ///< "" for what stays as it is
};

const char* const kCodes[] = {R"(<?php echo $x["a"]; ?>)", "<%= x %>", "{{ x.a }}", "{% x %}",
                              "${x}"};
const char* const kPlacesOfCode[] = {"<img src='@'>",
                                     "<img src='p/@.gif'>",
                                     "<img src='a.gif?v=@'>",
                                     "<img lowsrc='@'>",
                                     "<img srcset='a.gif 1x, @ 2x'>",
                                     "<a href='@'>x</a>",
                                     "<a href='other.html?x=@'>x</a>",
                                     "<table><tr><td background='@'>x</table>",
                                     "<link rel=stylesheet href='@'>",
                                     "<script src='@'></script>",
                                     "<p style='background:url(@)'>x</p>",
                                     "<p style='color:@;background:url(a.gif)'>x</p>",
                                     "<form action='@'></form>",
                                     "<input value='@' alt=@>",
                                     "<embed src='@'>",
                                     "<object data='@'><param name=movie value='@'></object>",
                                     "<iframe srcdoc='<img src=a.gif>@'>"
                                     "</iframe>",
                                     "<video poster='@' src='@'></video>",
                                     "<p>@</p>",
                                     "<!-- @ <img src=a.gif> -->",
                                     "<script>var a = '@', b = 'a.gif';</script>",
                                     "<style>p { background: url(@) }</style>",
                                     "<svg><image href='@'/><text>@</text></svg>",
                                     "<img @ alt=x>"};

const Row kRows[] = {
    {"from the root", "<img src='/images/logo.gif'>", "<img src='media/logo.gif'>"},
    {"from the root, missing", "<img src='/images/none.gif'>"},
    {"a page from the root", "<a href=/sub/deep.html#x>x</a>", "<a href=sub/deep.htm#x>x</a>"},
    {"a file of the machine", "<img src=/etc/passwd>"},
    {"its address", "<img src='file:///etc/passwd'><a href='file:///etc/passwd'>x</a>"},
    {"with one slash", "<img src='file:/etc/passwd'>"},
    {"the environment",
     "<img src=/proc/self/environ><a href='../../../../../proc/self/environ'>"
     "x</a><img src='file:///proc/self/pagemap'>"},
    {"a device", "<img src='file:///dev/zero'><bgsound src='../../../../dev/zero'>"},
    {"beside the folder", "<img src=../home/pic.gif>"},
    {"encoded", "<img src='..%2fhome%2fpic.gif'><img src='%2e%2e/home/pic.gif'>"},
    {"with backslashes", "<img src='..\\home\\pic.gif'>"},
    {"by a detour", "<img src=images/../../home/pic.gif>"},
    {"a picture twice as high", "<img srcset='a.gif 1x, ../home/pic.gif 2x'>",
     "<img srcset='media/a.gif 1x, ../home/pic.gif 2x'>"},
    {"a hidden folder", "<img src=.hidden/h.gif><a href=.hidden/h.gif>x</a>"},
    {"a link outside", "<img src=link.gif><a href=link.gif>x</a>"},
    {"a link to a folder", "<img src=linkdir/pic.gif>"},
    {"a link to what is hidden", "<img src=hiddenlink.gif>"},
    {"a link inside", "<img src=inside.gif>", "<img src=media/inside.gif>"},
    {"a link in a circle", "<script src=circle.js></script>"},
    {"a link to a device", "<script src=dev.gif></script>"},
    {"a link to the environment", "<script src=proc.gif></script>"},
    {"a pipe", "<script src=fifo.gif></script><a href=fifo.gif>x</a>"},
    {"a folder", "<script src=images></script><embed src=images/>"},
    {"a program's picture", "<img src='image.php?id=3'><img src='thumb?id=3'><img src=count.cgi>"},
    {"a missing picture", "<img src='p/none.gif?v=1'>", "<img src='media/none.gif?v=1'>"},
    {"no file name", "<img src='p/\x01.gif'><img src='..'><img src='C:/x/a.gif'>"},
    {"nothing", "<img src=''><img src='#x'><img src='?x'><img src='//host/a.gif'>"},
    {"other schemes", "<img src='javascript:a.gif'><img src='data:image/gif;base64,R0lG'>"},
    {"a link to a document", "<a href=paper.pdf>x</a>", "<a href=media/paper.pdf>x</a>"},
    {"one outside", "<a href=../home/secret.txt>x</a><area href=../home/secret.txt>"},
    {"a page outside", "<a href=../home/page.html>x</a><iframe src=../home/page.html></iframe>"},
    {"a refresh", "<meta http-equiv=refresh content='0; url=../home/secret.txt'>"},
    {"quotations", "<q cite=../home/secret.txt>x</q><img alt='' longdesc=../home/secret.txt>"},
    {"a style sheet", "<link rel=stylesheet href=s.css>", "<link rel=stylesheet href=media/s.css>"},
    {"one outside ", "<link rel=stylesheet href=../home/s.css>"},
    {"a preload", "<link rel=preload as=font href=f.woff2>",
     "<link rel=preload as=font href=media/f.woff2>"},
    {"one outside  ", "<link rel=preload as=image imagesrcset='../home/pic.gif 1x'>"},
    {"styles",
     "<p style='background:url(../home/pic.gif)'>x</p><p style=\"background:url('a.gif')\">"
     "x</p>",
     "<p style='background:url(../home/pic.gif)'>x</p><p style=\"background:url('media/a.gif')\">x"
     "</p>"},
    {"a style element",
     "<style>@import '../home/s.css'; p{background:url(/etc/passwd)}"
     "b{background:url(a.gif)}</style>",
     "<style>@import '../home/s.css'; p{background:url(/etc/passwd)}b{background:url(media/a.gif)}"
     "</style>"},
    {"a script", "<script src=../home/s.js></script>"},
    {"an object", "<object data=../home/secret.txt></object><embed src=../home/film.mp4>"},
    {"a parameter", "<object><param name=movie value=film.swf><param name=v value=1></object>",
     "<object><param name=movie value=media/film.swf><param name=v value=1></object>"},
    {"one outside   ", "<object><param name=movie value=../home/film.swf></object>"},
    {"archives", "<applet code=A archive='x.jar, ../home/x.jar,none.jar'></applet>",
     "<applet code=A archive='media/x.jar, ../home/x.jar,none.jar'></applet>"},
    {"archives beside classes", "<applet code=A codebase=java archive=y.jar></applet>",
     "<applet code=A codebase=java archive=../media/y.jar></applet>"},
    {"film",
     "<video poster=../home/pic.gif src=../home/film.mp4><source src=../home/film.mp4>"
     "<track src=../home/secret.txt></video>"},
    {"a drawing", "<svg><image href='a.gif'/><image xlink:href='a.gif'/></svg>",
     "<svg><image href='media/a.gif'/><image xlink:href='media/a.gif'/></svg>"},
    {"one with strange pictures",
     "<svg><image xlink:href='../home/pic.gif'/><use href='#a'/></svg>"},
    {"character data", "<svg><text><![CDATA[a < b && <img src=a.gif>]]></text></svg>"},
    {"mathematics", "<math><mtext href='../home/secret.txt'>x</mtext></math>"},
    {"a page in a tag", "<iframe srcdoc='<p><img src=a.gif alt=x></p>'></iframe>",
     "<iframe srcdoc='<p><img src=media/a.gif alt=x></p>'></iframe>"},
    {"one in it", "<iframe srcdoc='<iframe srcdoc=\"<img src=a.gif>\"></iframe>'></iframe>",
     "<iframe srcdoc='<iframe srcdoc=\"<img src=media/a.gif>\"></iframe>'></iframe>"},
    {"one with secrets",
     "<iframe srcdoc='<img src=../home/pic.gif><a href=/etc/passwd>x</a>'>"
     "</iframe>"},
    {"text of its own",
     "<noscript><img src=../home/pic.gif></noscript><textarea><img src=a.gif>"
     "</textarea>"},
    {"odd attributes", "<IMG SRC=no.gif\tAlt = \"&lt;\"  <?x ?>>",
     "<IMG SRC=media/no.gif\tAlt = \"&lt;\"  <?x ?>>"},
};

/** Whole pages: {file, before, after}; "here" in them is edited. */
const Row kPages[] = {
    {"base_disk.html", "<head><base href='file:///etc/'></head><body><p>here</p><img src=passwd>"},
    {"base_out.html", "<head><base href='../home/'></head><body><p>here</p><img src=pic.gif>"},
    {"base_code.html", "<head><base href='<?= $b ?>'></head><body><p>here</p><img src=a.gif>"},
    {"base_root.html", "<head><base href='/images/'></head><body><p>here</p><img src=logo.gif>",
     "<head><base></head><body><p>here</p><img src=media/logo.gif>"},
    {"code_first.html", "<?php include 'x.php'; ?>\n<html><body><p>here</p><?php end() ?>"},
    {"code_title.html", "<title><?= $t ?></title><body <?= $b ?>><p>here</p>"},
    {"code_body.html", "<body background='<?= $b ?>'><p>here</p>"},
    {"a:b.html", "<title>colon</title><p>here</p>"},
    {"frames.html",
     "<html><head><title>F</title></head><!-- <?php a('--') ?> --><frameset cols='*,1'>"
     "<!-- {{ x }} --><frame src='<?= $u ?>'><frame src=target.html><frame src=/etc/passwd>"
     "<noframes><body background=../home/pic.gif><p><%= x %></p><img src=a.gif></body></noframes>"
     "</frameset></html>",
     "<html><head><title>F</title></head><!-- <?php a('--') ?> --><frameset cols='*,1'>"
     "<!-- {{ x }} --><frame src='<?= $u ?>'><frame src=@target><frame src=/etc/passwd>"
     "<noframes><body background=../home/pic.gif><p><%= x %></p><img src=media/a.gif></body>"
     "</noframes></frameset></html>"},
};

struct HostilePages : testing::Test {
    HostilePages() {
        const auto& in = test.folder;
        for (const char* secret : {"pic.gif", "secret.txt", "s.css", "s.js", "film.mp4", "film.swf",
                                   "x.jar", "page.html", ".keys\\id"})
            in.Put(std::string("home\\") + secret, "GIF89aSECRET");
        for (const char* own : {"a.gif", "images\\logo.gif", ".hidden\\h.gif", "paper.pdf",
                                "f.woff2", "film.swf", "x.jar", "java\\y.jar", "image.php"})
            in.Put(std::string("site\\") + own, std::string("GIF89a own ") + own);
        in.Put("site\\.hidden\\h.gif", "GIF89aSECRET");
        in.Put("site\\s.css", kStyles);
        in.Put("site\\index.html", "<title>index</title>");
        in.Put("site\\target.html", "<title>target</title><p>here</p>");
        in.Put("site\\sub\\deep.html", "<title>deep</title><img src='../../home/pic.gif'>");
        Link("../home/pic.gif", "link.gif");
        Link("../home", "linkdir");
        Link(".hidden/h.gif", "hiddenlink.gif");
        Link("a.gif", "inside.gif");
        Link("circle.js", "circle.js");
        Link("/dev/zero", "dev.gif");
        Link("/proc/self/environ", "proc.gif");
        Link("../home/page.html", "linked.html");
        ::mkfifo(in.Native("site/fifo.gif").c_str(), 0600);
        ::mkfifo(in.Native("site/fifo.html").c_str(), 0600);
    }
    void Link(const std::string& to, const std::string& name) {
        fs::create_symlink(to, test.folder.Native("site/" + name));
    }
    std::vector<Row> Rows() const {
        std::vector<Row> rows(std::begin(kRows), std::end(kRows));
        for (const char* place : kPlacesOfCode)
            for (const char* code : kCodes)
                rows.push_back({place, ReplaceAll(place, "@", code)});
        return rows;
    }
    /** Everything below a folder that holds what is nobody's business. */
    void ExpectNoSecretsIn(const fs::path& place) {
        for (const auto& entry : fs::recursive_directory_iterator(place)) {
            EXPECT_FALSE(entry.is_symlink()) << entry.path();
            if (!entry.is_regular_file()) continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            EXPECT_EQ(bytes.find("SECRET"), bytes.npos) << entry.path();
            EXPECT_EQ(bytes.find("root:x:0"), bytes.npos) << entry.path();
        }
    }
    Page* PageOf(const std::string& name) {
        for (const PageIndexEntry& entry : test.project.PageIndex())
            if (GetFileName(entry.Item->Filename) == name) return entry.Item;
        return nullptr;
    }
    void EditAt(const std::string& name) {
        Page* page = PageOf(name);
        ASSERT_TRUE(page) << name;
        test.context.workspace.ShowPage(page->Key(), page->Name, page->Filename, page->PageType);
        dom::Document& document = *test.workspace.Find(page->Key())->document;
        for (dom::Node* node = document.root(); node; node = node->following())
            if (node->isText() && node->data() == "here")
                return document.setText(*node, "there & then");
        ADD_FAILURE() << name << " has nothing to be edited";
    }

    const char* const kStyles =
        "@import '../home/s.css'; p{background:url(../home/pic.gif)} b{background:url({{ x }})}"
        "i{background:url(images/logo.gif)} u{background:url(.hidden/h.gif)}";
    test::TestProject test;
};

TEST_F(HostilePages, KeepTheirBytesAndBringNothingAlong) {
    const std::vector<Row> rows = Rows();
    const std::string head = "<title>rows</title><p>here</p>\n<a href=target.html>t</a>\n";
    std::string all = head;
    for (const Row& row : rows)
        all += row.before + "\n";
    test.folder.Put("site\\rows.html", all);
    for (const Row& page : kPages)
        test.folder.Put(std::string("site\\") + page.name, page.before);

    AddFilesRequest request;
    request.paths = {test.folder.Path("site")};
    AddFilesResult added = AddFiles(test.context, request);
    std::string problems;
    for (const auto& problem : added.problems)
        problems += GetFileName(problem.file) + " ";
    EXPECT_EQ(problems, "fifo.html linkdir linked.html ");
    EXPECT_EQ(added.pageKeys.size(), std::size(kPages) + 4);
    for (const LeftOutFile& file : added.leftOut) {
        const bool isSecret = file.why == Verdict::Hidden || file.file.starts_with("\\proc") ||
                              file.file.starts_with("\\dev");
        EXPECT_TRUE(!isSecret || !file.mayBeOffered) << file.reference;
        EXPECT_EQ(file.reference.find("{{"), std::string::npos);
    }

    EditAt("rows.htm");
    for (const Row& page : kPages)
        if (page.before.find("here") != std::string::npos)
            EditAt(ReplaceAll(GetBaseName(page.name), ":", "_") + ".htm");
    test.SaveAs("hostile.pwp");
    std::string reason;
    ASSERT_TRUE(RenamePage(test.context, *PageOf("target.htm"), "renamed.htm", &reason)) << reason;
    test.SaveAs("hostile.pwp");
    test.project.Name = "Out";
    const PublishResult published = PublishAsHTML(test.context, test.folder.Path("www"));
    ASSERT_TRUE(published.published) << published.reason;

    const auto line = [](const std::string& text, const Row& row) {
        return ReplaceAll(ReplaceAll(text.empty() ? row.before : text, "@target", "renamed.htm"),
                          ">here<", ">there &amp; then<");
    };
    const std::string out = test.Text(published.folder + "\\rows.htm");
    const std::vector<std::string> lines = Split(out, '\n');
    ASSERT_EQ(lines.size(), rows.size() + 3);
    EXPECT_EQ(lines[0], "<title>rows</title><p>there &amp; then</p>");
    EXPECT_EQ(lines[1], "<a href=renamed.htm>t</a>");
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(lines[i + 2], line(rows[i].after, rows[i])) << rows[i].name;
    for (const Row& page : kPages) {
        const std::string name = ReplaceAll(GetBaseName(page.name), ":", "_") + ".htm";
        EXPECT_EQ(test.Text(published.folder + "\\" + name), line(page.after, page)) << page.name;
    }
    EXPECT_EQ(test.Text(published.folder + "\\media\\s.css"),
              ReplaceAll(kStyles, "images/logo.gif", "logo.gif"));
    ExpectNoSecretsIn(test.folder.Native("www"));
    ExpectNoSecretsIn(ToNativePath(test.frame.settings.PreviewFolder));
    const std::string project = test.Text(test.folder.Path("hostile.pwp"));
    EXPECT_EQ(project.find("GIF89aSECRET"), project.npos);
}

/** A page that is taken by itself: what its tags are for, from its own folder. */
TEST_F(HostilePages, TakenAloneBringWhatTheirTagsAreFor) {
    for (const char* name : {"one.html", "two.html"})
        test.folder.Put(std::string("site\\") + name,
                        "<title>x</title><img src=a.gif><img src=notes.gif><script src=notes.txt>"
                        "</script><script src=run.js></script><link rel=stylesheet href=notes.txt>"
                        "<link rel=stylesheet href=s.css><embed src=paper.pdf><embed src=tune.mid>"
                        "<img src=bad.svg><img src=good.svg><a href=report.pdf>r</a>"
                        "<a href=target.html>t</a><img src=../home/pic.gif>");
    test.folder.Put("site\\notes.gif", "dear diary");
    test.folder.Put("site\\notes.txt", "dear diary");
    test.folder.Put("site\\run.js", "go()");
    test.folder.Put("site\\tune.mid", "MThd tune");
    test.folder.Put("site\\paper.pdf", "%PDF dear diary");
    test.folder.Put("site\\report.pdf", "%PDF report");
    test.folder.Put("site\\bad.svg", "<html><!-- <svg> --></html>");
    test.folder.Put("site\\good.svg", "<?xml version='1.0'?><!-- x --><svg/>");
    AddFilesRequest request;
    request.paths = {test.folder.Path("site\\one.html")};
    AddFilesResult added = AddFiles(test.context, request);
    const std::string page = PageOf("index.htm")->Filename;
    const std::string alone =
        "<title>x</title><img src=media/a.gif><img src=notes.gif><script src=notes.txt></script>"
        "<script src=media/run.js></script><link rel=stylesheet href=notes.txt>"
        "<link rel=stylesheet href=media/s.css><embed src=paper.pdf><embed src=media/tune.mid>"
        "<img src=bad.svg><img src=media/good.svg><a href=report.pdf>r</a><a href=target.html>t</a>"
        "<img src=../home/pic.gif>";
    EXPECT_EQ(test.Text(page), alone);
    std::vector<std::string> offered;
    for (const LeftOutFile& file : added.leftOut)
        if (file.mayBeOffered) offered.push_back(file.reference);
    EXPECT_THAT(offered, testing::UnorderedElementsAre("report.pdf", "notes.gif", "notes.txt",
                                                       "paper.pdf", "bad.svg", "../home/pic.gif",
                                                       "../home/pic.gif", "../home/s.css"));

    // What the user agrees to comes along; the page and its style sheet stay where they are.
    EXPECT_TRUE(
        added.takeLeftOut({test.folder.Path("site\\report.pdf"), test.folder.Path("home\\pic.gif")})
            .empty());
    EXPECT_EQ(test.Text(page), ReplaceAll(ReplaceAll(alone, "=report.pdf", "=media/report.pdf"),
                                          "../home/pic.gif", "media/pic.gif"));
    const std::string media = test.frame.settings.MediaFolder;
    EXPECT_EQ(test.Text(media + "\\report.pdf"), "%PDF report");
    EXPECT_THAT(test.Text(media + "\\s.css"), testing::HasSubstr("p{background:url(pic.gif)}"));
    EXPECT_FALSE(FileExists(*test.files, media + "\\s2.css"));
    EXPECT_EQ(test.project.PageCount(), 1);

    // A folder that is named counts for all.
    request.paths = {test.folder.Path("site\\two.html")};
    request.withFilesFrom = {test.folder.Path("home"), test.folder.Path("site")};
    EXPECT_TRUE(AddFiles(test.context, request).leftOut.size() <= 1) << "but for what is hidden";
    EXPECT_THAT(test.Text(PageOf("two.htm")->Filename), testing::HasSubstr("media/notes.gif"));
}

TEST_F(HostilePages, OfAnOpenProjectReachNothingOutsideOfIt) {
    Page* page = test.Insert("a");
    const std::string root = test.frame.settings.PreviewFolder;
    const std::string pic = test.folder.Path("home\\pic.gif");
    fs::create_symlink(ToNativePath(pic), ToNativePath(root + "\\link.gif"));
    const std::string up = "../../../../../../../../../..";
    const auto document = dom::Document::parseText(
        "<body background='file://" + ToNativePath(pic) + "'><img src='" + ToNativePath(pic) +
        "'><img src='" + up + ToNativePath(pic) +
        "'><img src=link.gif><img src=/etc/passwd>"
        "<table background=/proc/self/environ><tr><td background=/dev/zero></table>");
    SaveAttachments(test.context, *document, root, *page);
    EXPECT_EQ(page->Attachments().Count(), 0);
    ASSERT_TRUE(fs::remove(ToNativePath(root + "\\link.gif")));
    ExpectNoSecretsIn(ToNativePath(root));
}

}  // namespace
}  // namespace pw
