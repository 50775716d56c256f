// A random walk of editing commands, by the user and by the program, through a real view. After
// each step the document and the view are compared.
#include <QElapsedTimer>

#include <random>

#include "EditorFixture.h"
#include "platform/dom/NormalTree.h"
#include "platform/editor/LayerCommands.h"
#include "platform/editor/TableCommands.h"

namespace pw {
namespace {

using test::EditorFixture;

std::string pageOf(int paragraphs) {
    std::string html = "<HTML><HEAD><TITLE>Walk</TITLE></HEAD>\r\n<BODY>\r\n";
    for (int i = 0; i < paragraphs; ++i) {
        const std::string n = std::to_string(i);
        html += i % 7 == 0 ? "<H2>Heading " + n + "</H2>\r\n"
                           : "<P>Paragraph " + n + " with <b>bold " + n + "</b> and text\r\n";
        if (i % 5 == 0)
            html += "<TABLE border=1><tr><td>a" + n + "<td>b" + n + "</table>\r\n<UL><LI>item " +
                    n + "<LI>other</UL>\r\n<!-- remark --><IMG alt=x>\r\n";
    }
    return html + "</BODY></HTML>\r\n";
}

class EditorWalkTest : public EditorFixture {
  protected:
    std::size_t pick(std::size_t count) { return random() % count; }

    static std::size_t boundary(const std::string& text, std::size_t at) {
        while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80)
            ++at;
        return at;
    }

    dom::Position place() {
        std::vector<dom::Node*> texts;
        dom::Node* body = document->body();
        for (dom::Node* node = body; node; node = node->following(body))
            if (node->isText() && node->parent()) texts.push_back(node);
        if (texts.empty()) return {body, 0};
        dom::Node* text = texts[pick(texts.size())];
        return {text, boundary(text->data(), pick(text->data().size() + 1))};
    }
    void putCaret() { document->collapse(place()); }
    void selectSome() {
        const dom::Position anchor = place();
        const dom::Position focus =
            pick(2) ? place()
                    : dom::Position{anchor.node,
                                    anchor.node->isText() ? anchor.node->data().size() : 0};
        document->setSelection({dom::SelectionType::Text, anchor, focus, nullptr});
    }

    /** A command on the cells that a selection touches, most often within one table. */
    std::string tableStep() {
        const auto cells = document->tags("td");
        if (cells.empty()) return "no table";
        const std::size_t first = pick(cells.size());
        const std::size_t last = std::min(first + pick(5), cells.size() - 1);
        document->setSelection(
            {dom::SelectionType::Text, {cells[first], 0}, {cells[last], 0}, nullptr});
        const auto command = TableCommand(pick(8));
        RunTableCommand(*document, command);
        return "table command " + std::to_string(int(command));
    }

    /** A command on an object, or one moved and resized as the mouse does it. */
    std::string layerStep() {
        static constexpr const char* kObjects[] = {"img", "table", "ul", "h2"};
        const auto objects = document->tags(kObjects[pick(std::size(kObjects))]);
        if (objects.empty()) return "no object";
        dom::Node* object = objects[pick(objects.size())];
        document->setSelection({dom::SelectionType::Control, {}, {}, object});
        if (pick(3) == 0) {
            PlaceObject(*document, *object, {int(pick(90)), int(pick(90)), 50, 40});
            return "place";
        }
        const auto command = LayerCommand(pick(2) ? 0 : pick(8));
        RunLayerCommand(*document, command,
                        [this](const dom::Node& node) { return view.FreePlaceOf(node); });
        return "layer command " + std::to_string(int(command));
    }

    /** One step; its name, for the message of a failure. */
    std::string step() {
        struct Command {
            const char* name;
            const char* argument;
            bool range;
        };
        static constexpr Command commands[] = {
            {"insertText", "typed ", false},
            {"insertParagraph", "", false},
            {"delete", "", false},
            {"delete", "", true},
            {"forwardDelete", "", false},
            {"bold", "", true},
            {"italic", "", true},
            {"insertUnorderedList", "", true},
            {"insertOrderedList", "", true},
            {"indent", "", true},
            {"outdent", "", true},
            {"formatBlock", "h3", true},
            {"createLink", "p.htm", true},
            {"foreColor", "#ff0000", true},
            {"fontName", "Arial", true},
            {"justifyCenter", "", true},
            {"removeFormat", "", true},
            {"insertHTML", "<p>new <i>it</i></p><table><tr><td>q</table>", false},
        };
        constexpr std::size_t count = std::size(commands);
        const std::size_t which = pick(count + 12);
        if (which < count) {
            const Command& command = commands[which];
            command.range ? selectSome() : putCaret();
            view.Execute(command.name, command.argument);
            return command.name;
        }
        switch (which - count) {
            case 0:
                document->undo();
                return "undo";
            case 1:
                document->redo();
                return "redo";
            case 2: {
                const auto& all = document->all();
                document->setAttribute(*all[pick(all.size())], "class", std::to_string(pick(9)));
                return "setAttribute";
            }
            case 3:
                document->insertAdjacentHTML(*document->body(), "beforeEnd",
                                             "<p>by <em>program</em></p>");
                return "insertAdjacentHTML";
            case 4:
                selectSome();
                document->deleteSelection();
                return "deleteSelection";
            case 5: {
                const dom::Position at = place();
                if (at.node->parentElement() && at.node->parentElement() != document->body())
                    document->removeNode(*at.node->parentElement());
                return "removeNode";
            }
            case 6:
                putCaret();
                view.Flush();
                QTest::keyClicks(keyboard(), "ab");
                return "keys";
            case 7:
            case 8:
                return tableStep();
            case 9:
            case 10:
                return layerStep();
            default:
                putCaret();
                view.Flush();
                QTest::keyClick(keyboard(), pick(2) ? Qt::Key_Return : Qt::Key_Backspace);
                return "key";
        }
    }

    void walk(int paragraphs, int steps, unsigned seed, qint64 milliseconds) {
        // Another walk for each --gtest_random_seed.
        random.seed(seed + unsigned(GTEST_FLAG_GET(random_seed)));
        open(pageOf(paragraphs));
        // The engine has commands that never end on what a walk leaves behind.
        view.setPatience(8000);
        QElapsedTimer clock;
        clock.start();
        int done = 0;
        for (; done < steps && clock.elapsed() < milliseconds; ++done) {
            const std::string name = step();
            view.Flush();
            ASSERT_EQ(viewTree(), documentTree()) << "step " << done << ": " << name;
            // What the program itself is told to do may be anything; what the view does is mended.
            const auto again = dom::Document::parseText(document->html());
            ASSERT_EQ(test::NormalTree(*document), test::NormalTree(*again))
                << "step " << done << ": " << name << "\n"
                << document->html();
        }
        RecordProperty("steps", done);
        while (document->undo()) {
        }
        EXPECT_EQ(document->bytes(), loaded);
        view.Flush();
        EXPECT_EQ(viewTree(), documentTree());
        while (document->redo()) {
        }
        view.Flush();
        EXPECT_EQ(viewTree(), documentTree());
    }

    std::mt19937 random;
};

TEST_F(EditorWalkTest, ThirtyParagraphs) {
    walk(30, 300, 7, 90'000);
}

TEST_F(EditorWalkTest, ThreeHundredParagraphs) {
    walk(300, 300, 11, 120'000);
}

}  // namespace
}  // namespace pw
