#include "platform/qt/editor/EditorView.h"

#include <QClipboard>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <csignal>

#include "EditorFixture.h"

namespace pw {
namespace {

using test::EditorFixture;
using test::kPage;

class EditorViewTest : public EditorFixture {};

TEST_F(EditorViewTest, ShowsTheWholeDocument) {
    open(kPage);
    EXPECT_EQ(viewTree(), documentTree());
    EXPECT_EQ(document->bytes(), loaded);
    EXPECT_EQ(evaluate("document.compatMode").toString(), "CSS1Compat");
    // The page's scripts are dead: its handler would have thrown.
    EXPECT_EQ(evaluate("typeof document.body.onload").toString(), "object");
}

TEST_F(EditorViewTest, QuirksFollowTheDoctype) {
    open("<html><body><p>old</p></body></html>");
    EXPECT_EQ(evaluate("document.compatMode").toString(), "BackCompat");
}

TEST_F(EditorViewTest, TypingChangesOnlyWhatWasTyped) {
    open(kPage);
    caretBehind("Second");
    type(" new");
    std::string expected = loaded;
    expected.replace(expected.find("Second paragraph"), 6, "Second new");
    EXPECT_EQ(document->bytes(), expected);
    EXPECT_EQ(viewTree(), documentTree());
    EXPECT_EQ(document->selection().focus.offset, std::string("Second new").size());

    // One step, there and back, to the byte.
    EXPECT_TRUE(document->undo());
    view.Flush();
    EXPECT_EQ(document->bytes(), loaded);
    EXPECT_EQ(viewTree(), documentTree());
    EXPECT_FALSE(document->canUndo());
    EXPECT_TRUE(document->redo());
    view.Flush();
    EXPECT_EQ(document->bytes(), expected);
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, ACaretSetWhileAnotherWindowIsActiveTakesTheKeys) {
    QWidget other;
    other.show();
    document = dom::Document::parse("<html><body><p>first</p><p>second</p></body></html>");
    view.resize(900, 700);
    view.setAttribute(Qt::WA_ShowWithoutActivating);
    view.show();
    other.activateWindow();
    other.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    view.Show(*document, "file:///tmp/");
    view.Flush();
    caretBehind("second");
    ASSERT_FALSE(evaluate("document.hasFocus()").toBool());

    view.activateWindow();
    keyboard()->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    type("!");
    EXPECT_EQ(body(), "<p>first</p><p>second!</p>");
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, EnterAndBackspace) {
    open("<html><body><p>first second</p></body></html>");
    caretBehind("first");
    press(Qt::Key_Return);
    EXPECT_EQ(document->tags("p").size(), 2u);
    EXPECT_EQ(viewTree(), documentTree());
    type("x");
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    EXPECT_EQ(document->tags("p").size(), 1u);
    EXPECT_EQ(viewTree(), documentTree());
    while (document->canUndo())
        document->undo();
    view.Flush();
    EXPECT_EQ(document->bytes(), loaded);
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, CharactersOfEveryPlane) {
    open("<html><body><p>a\xF0\x9F\x98\x80z \xC3\xA9t\xC3\xA9</p></body></html>");
    caretBehind("\xF0\x9F\x98\x80");
    type("b");
    EXPECT_EQ(body(),
              "<p>a\xF0\x9F\x98\x80"
              "bz \xC3\xA9t\xC3\xA9</p>");
    press(Qt::Key_Backspace);
    press(Qt::Key_Backspace);
    EXPECT_EQ(body(), "<p>az \xC3\xA9t\xC3\xA9</p>");
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, FormattingCommandsAndTheirStates) {
    struct Row {
        const char* command;
        const char* argument;
        const char* markup;
    };
    const Row rows[] = {
        {"bold", "", "<b>word</b>"},
        {"italic", "", "<i>word</i>"},
        {"underline", "", "<u>word</u>"},
        {"foreColor", "#ff0000", "<font color=\"#ff0000\">word</font>"},
        {"fontName", "Arial", "<font face=\"Arial\">word</font>"},
        {"fontSize", "5", "<font size=\"5\">word</font>"},
        {"createLink", "p.htm", "<a href=\"p.htm\">word</a>"},
    };
    open("<html><body><p>a word here</p></body></html>");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        select("word");
        EXPECT_EQ(view.QueryState(row.command), CommandState::Enabled);
        EXPECT_TRUE(view.Execute(row.command, row.argument));
        EXPECT_EQ(body(), std::string("<p>a ") + row.markup + " here</p>");
        EXPECT_EQ(viewTree(), documentTree());
        // A command is one step, and never a part of another.
        EXPECT_TRUE(document->undo());
        EXPECT_FALSE(document->canUndo());
        view.Flush();
        EXPECT_EQ(document->bytes(), loaded);
    }
    select("word");
    view.Execute("bold", "");
    view.Execute("justifyCenter", "");
    EXPECT_EQ(view.QueryState("bold"), CommandState::Latched);
    EXPECT_EQ(view.QueryState("justifyCenter"), CommandState::Latched);
    EXPECT_EQ(view.QueryState("italic"), CommandState::Enabled);
    EXPECT_EQ(view.QueryState("nonsense"), CommandState::NotSupported);
    view.Execute("formatBlock", "h2");
    EXPECT_EQ(view.QueryValue("formatBlock"), "h2");
}

TEST_F(EditorViewTest, TypingAndACommandNeverShareAStep) {
    open("<html><body><p>a word here</p></body></html>");
    caretBehind("here");
    QTest::keyClicks(keyboard(), " x");
    view.Execute("insertUnorderedList", "");
    EXPECT_TRUE(document->undo());
    EXPECT_NE(body().find("here x"), std::string::npos);
    EXPECT_TRUE(document->undo());
    EXPECT_EQ(document->bytes(), loaded);
}

TEST_F(EditorViewTest, ChangesOfTheProgramAppear) {
    open(kPage);
    dom::Node* image = document->images().front();
    document->setAttribute(*image, "width", "120");
    document->insertAdjacentHTML(
        *document->body(), "afterBegin",
        "<p id=new>fresh <svg viewBox='0 0 9 9'><path d='M0 0'/></svg></p>");
    document->setTitle("Other");
    document->removeNode(*document->tags("h1").front());
    view.Flush();
    EXPECT_EQ(viewTree(), documentTree());
    EXPECT_EQ(evaluate("document.querySelector('path').namespaceURI").toString(),
              "http://www.w3.org/2000/svg");
    while (document->canUndo())
        document->undo();
    view.Flush();
    EXPECT_EQ(viewTree(), documentTree());
    EXPECT_EQ(document->bytes(), loaded);
}

TEST_F(EditorViewTest, WhatIsTypedMeanwhileSurvivesAChangeOfTheProgram) {
    open("<html><body><p>first</p><p>second</p></body></html>");
    caretBehind("second");
    // No flush between them: the view types into a tree that the program is changing.
    QTest::keyClicks(keyboard(), "abc");
    document->insertAdjacentHTML(*document->body(), "afterBegin", "<h1>Top</h1>");
    document->setAttribute(*document->tags("p").front(), "align", "center");
    QTest::keyClicks(keyboard(), "def");
    view.Flush();
    EXPECT_EQ(body(), "<h1>Top</h1><p align=\"center\">first</p><p>secondabcdef</p>");
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, SelectionTravelsBothWays) {
    open(kPage);
    select("two");
    EXPECT_EQ(evaluate("getSelection().toString()").toString(), "two");
    evaluate("getSelection().selectAllChildren(document.querySelector('h1'))");
    view.Flush();
    ASSERT_EQ(document->selection().type, dom::SelectionType::Text);
    EXPECT_TRUE(document->elementAtCaret()->is("h1"));
    document->setSelection({dom::SelectionType::Control, {}, {}, document->images().front()});
    view.Flush();
    EXPECT_TRUE(evaluate("pw.control() === document.images[0]").toBool());
    evaluate("getSelection().collapse(document.querySelector('h1'), 0)");
    view.Flush();
    EXPECT_EQ(document->selection().type, dom::SelectionType::Text);
    EXPECT_EQ(document->selection().control, nullptr);
}

TEST_F(EditorViewTest, OurOwnDrawingNeverGetsIntoThePage) {
    open(kPage);
    view.SetShowBorders(true);
    view.SetShowTags(true);
    view.SetGrid(20, 20);
    view.SetSnapToGrid(true);
    document->setSelection({dom::SelectionType::Control, {}, {}, document->images().front()});
    view.Flush();
    QTest::qWait(50);
    EXPECT_EQ(document->bytes(), loaded);
    evaluate("document.execCommand('selectAll')");
    press(Qt::Key_Delete);
    type("all new");
    EXPECT_EQ(document->html().find("pw-chrome"), std::string::npos);
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, MarkedCellsAreDrawnAndFollowThePage) {
    open("<table width=300><tr><td>a<td>b<td>c</table>");
    const auto marks = [this] {
        view.Flush();
        return evaluate("pw.cellMarks().map(m => m.join()).join(' ')").toString();
    };
    const auto boxes = [this](int first, int last) {
        QStringList all;
        for (int i = first; i <= last; ++i) {
            const QRectF box = boxOf(QStringLiteral("td:nth-child(%1)").arg(i));
            all << QStringLiteral("%1,%2").arg(qRound(box.left())).arg(qRound(box.width()));
        }
        return all.join(' ');
    };
    const auto cells = document->tags("td");
    view.MarkCells({cells[0], cells[1]});
    EXPECT_EQ(marks(), boxes(1, 2));
    document->setAttribute(*cells[0], "width", "150");
    EXPECT_TRUE(QTest::qWaitFor([&] { return marks() == boxes(1, 2); }));
    view.MarkCells({});
    EXPECT_EQ(marks(), "");
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, KeysOfCommandsArePassedOnAndDoNothingHere) {
    open(kPage);
    caretBehind("Second");
    type("x");
    const std::string typed = document->bytes();
    std::vector<KeyPress> keys;
    view.events.keyUp = [&](const KeyPress& key) { keys.push_back(key); };
    for (const Qt::Key key : {Qt::Key_Z, Qt::Key_Y, Qt::Key_B, Qt::Key_I, Qt::Key_U, Qt::Key_X}) {
        keys.clear();
        press(key, Qt::ControlModifier);
        // The key, and Control itself behind it.
        ASSERT_TRUE(QTest::qWaitFor([&] { return keys.size() == 2; }));
        EXPECT_EQ(keys.front().keyCode, int(key));
        EXPECT_TRUE(keys.front().control);
        EXPECT_EQ(document->bytes(), typed);
    }
    keys.clear();
    press(Qt::Key_F1);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !keys.empty(); }));
    EXPECT_EQ(keys.back().keyCode, 112);
}

TEST_F(EditorViewTest, PasteIsTheProgramsBusiness) {
    open(kPage);
    caretBehind("Second");
    auto* mime = new QMimeData;
    mime->setHtml("<b onclick=run()>bad</b><script>run()</script>");
    QApplication::clipboard()->setMimeData(mime);
    std::vector<std::string> commands;
    view.events.command = [&](const std::string& name) { commands.push_back(name); };
    press(Qt::Key_V, Qt::ControlModifier);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !commands.empty(); }));
    EXPECT_EQ(commands, std::vector<std::string>{"paste"});
    EXPECT_EQ(document->bytes(), loaded);
}

TEST_F(EditorViewTest, APictureOfTheClipboardIsReported) {
    open(kPage);
    QImage picture(4, 3, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QApplication::clipboard()->setImage(picture);
    std::string png;
    view.events.imagePasted = [&](const std::string& bytes) { png = bytes; };
    EXPECT_TRUE(view.Execute("pasteImage", ""));
    EXPECT_EQ(QImage::fromData(QByteArray::fromStdString(png), "PNG").size(), QSize(4, 3));
}

TEST_F(EditorViewTest, ADeadRendererIsReplaced) {
    open(kPage);
    caretBehind("Second");
    type(" kept");
    const std::string typed = document->bytes();
    const auto process = view.view()->page()->renderProcessPid();
    ASSERT_GT(process, 0);
    ASSERT_EQ(kill(static_cast<pid_t>(process), SIGKILL), 0);
    view.Flush();
    ASSERT_FALSE(view.Busy());
    EXPECT_NE(view.view()->page()->renderProcessPid(), process);
    EXPECT_EQ(document->bytes(), typed);
    EXPECT_EQ(viewTree(), documentTree());
    caretBehind("kept");
    type(" too");
    EXPECT_NE(document->bytes().find("Second kept too"), std::string::npos);
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, ACommandDuringTheDeathOfTheRendererEnds) {
    open(kPage);
    select("Second");
    kill(static_cast<pid_t>(view.view()->page()->renderProcessPid()), SIGKILL);
    view.Execute("bold", "");
    view.Flush();
    EXPECT_FALSE(view.Busy());
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, OddPages) {
    struct Row {
        const char* name;
        const char* html;
    };
    const Row rows[] = {
        {"frameset",
         "<html><head></head><frameset cols=50%,50%><frame src=x.htm><frame></frameset></html>"},
        {"empty", ""},
        {"comments around",
         "<!-- a --><!doctype html><!-- b --><html><body></body></html><!-- c -->"},
        {"refresh",
         "<html><head><meta http-equiv=refresh content='0;url=/'></head><body>x</body></html>"},
        {"autofocus", "<html><body>text</body></html>"},
        {"template and noscript", "<html><body><noscript><p>no</p></noscript></body></html>"},
        {"line ends in pre", "<html><body><pre>a\r\nb\r\n</pre></body></html>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        open(row.html);
        EXPECT_EQ(viewTree(), documentTree());
        EXPECT_EQ(document->bytes(), loaded);
        view.Clear();
    }
}

TEST_F(EditorViewTest, NamesThatTheViewRefusesStayInTheDocument) {
    open("<html><body><p \"quoted\" =x ok=1>text</p><foo\"bar>odd</foo\"bar></body></html>");
    EXPECT_EQ(evaluate("document.querySelector('p').getAttribute('ok')").toString(), "1");
    caretBehind("text");
    type("!");
    caretBehind("odd");
    type("!");
    std::string expected = loaded;
    expected.replace(expected.find("text"), 4, "text!");
    expected.replace(expected.find("odd"), 3, "odd!");
    EXPECT_EQ(document->bytes(), expected);
}

TEST_F(EditorViewTest, PicturesBesideThePageShow) {
    QTemporaryDir folder;
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    ASSERT_TRUE(picture.save(folder.filePath("a b.png")));
    open("<html><body><img src='a%20b.png'></body></html>",
         "file://" + folder.path().toStdString() + "/");
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return evaluate("document.images[0].naturalWidth").toInt() == 30; }));
}

TEST_F(EditorViewTest, ALargePageIsShown) {
    std::string html = "<html><body>";
    while (html.size() < 3'000'000)
        html += "<p>A paragraph \xC3\xA4 of <i>some</i> length.</p>\n";
    open(html + "</body></html>");
    EXPECT_EQ(viewTree(), documentTree());
    caretBehind("length");
    type("y");
    EXPECT_EQ(document->bytes().size(), loaded.size() + 1);
}

TEST_F(EditorViewTest, ANewDoctypeShowsThePageAnew) {
    open("<html><body><p>text</p></body></html>");
    ASSERT_TRUE(document->setHtml("<!doctype html><html><body><p>text</p></body></html>"));
    view.Flush();
    EXPECT_EQ(evaluate("document.compatMode").toString(), "CSS1Compat");
    EXPECT_EQ(viewTree(), documentTree());
}

TEST_F(EditorViewTest, CaptureWritesAPicture) {
    open(kPage);
    QTemporaryDir folder;
    const QString path = folder.filePath("page.jpg");
    EXPECT_TRUE(view.Capture(QString(path).replace('/', '\\').toStdString()));
    EXPECT_GT(QImage(path).width(), 100);
}

TEST_F(EditorViewTest, AListMadeOfAParagraphIsMendedInTheSameStep) {
    open("<!DOCTYPE html><html><body><p>One</p><p align=center>Two</p></body></html>");
    caretBehind("One");
    view.Execute("insertUnorderedList", "");
    view.Flush();
    EXPECT_EQ(
        document->html(),
        "<!DOCTYPE html><html><body><ul><li>One</li></ul><p align=center>Two</p></body></html>");
    EXPECT_EQ(viewTree(), documentTree());
    type("!");
    EXPECT_NE(document->html().find("<li>One!</li>"), std::string::npos) << document->html();
    document->undo();
    document->undo();
    EXPECT_EQ(document->html(), loaded);
}

TEST_F(EditorViewTest, WhatStandsAroundTheBodyIsOutOfReach) {
    const std::string front =
        "<!DOCTYPE html><html><head><title>t</title></head>"
        "<!-- <frameset><frame><!-- <noframes> -->";
    const std::string behind = "<!-- </noframes> --><!-- end </frameset> --></html>";
    open(front + "<body><p>One</p><p>Two</p></body>" + behind);
    const auto holds = [&](const char* after) {
        view.Flush();
        EXPECT_EQ(viewTree(), documentTree()) << after;
        EXPECT_TRUE(document->html().starts_with(front)) << after << document->html();
        EXPECT_TRUE(document->html().ends_with(behind)) << after << document->html();
    };
    const auto key = [&](Qt::Key pressed, Qt::KeyboardModifiers with = {}) {
        QTest::keyClick(keyboard(), pressed, with);
        view.Flush();
    };
    caretBehind("One");
    for (const char* command : {"selectAll", "delete", "selectAll", "insertText", "selectAll",
                                "insertHTML", "selectAll", "insertUnorderedList"}) {
        view.Execute(command, "<p>new</p>");
        holds(command);
    }
    for (int round = 0; round < 3; ++round) {
        key(Qt::Key_A, Qt::ControlModifier);
        key(Qt::Key_Backspace);
        key(Qt::Key_Backspace);
        key(Qt::Key_Delete);
        key(Qt::Key_Return);
        type("x");
        holds("keys");
    }
    document->setSelection({dom::SelectionType::Text,
                            {document->root(), 0},
                            {document->documentElement(), 5},
                            nullptr});
    document->deleteSelection();
    holds("deleteSelection");
    while (document->undo())
        holds("undo");
    EXPECT_EQ(document->html(), loaded);
}

}  // namespace
}  // namespace pw
