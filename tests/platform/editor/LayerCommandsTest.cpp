#include "platform/editor/LayerCommands.h"

#include <gtest/gtest.h>

#include "platform/editor/StyleDeclarations.h"
#include "support/MarkupSelection.h"

namespace pw {
namespace {

using test::markupOf;
using test::pageOf;

TEST(StyleDeclarationsTest, ChangesOneDeclarationAndKeepsTheRest) {
    struct Row {
        const char* before;
        const char* set;      ///< left: 7px
        const char* removed;  ///< left
    };
    const Row rows[] = {
        {"", "left: 7px", ""},
        {"color:RED", "color:RED; left: 7px", "color:RED"},
        {"color:red;", "color:red; left: 7px;", "color:red;"},
        {"LEFT :3px;color:red", "LEFT :7px;color:red", "color:red"},
        {"a:b; left: 3px ; c:d", "a:b; left: 7px ; c:d", "a:b; c:d"},
        {"left:1px;left:2px", "left:1px;left:7px", ""},
        {"left:1px !important;left:2px", "left:7px !important;left:2px", ""},
        {"left:/*;*/1px", "left:7px", ""},
        {"margin-left:2px", "margin-left:2px; left: 7px", "margin-left:2px"},
        {"background:url(a;left:1px);x", "background:url(a;left:1px);x; left: 7px",
         "background:url(a;left:1px);x"},
        {"font-family:'a;left:1'", "font-family:'a;left:1'; left: 7px", "font-family:'a;left:1'"},
        {"left", "left; left: 7px", "left"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.before);
        EXPECT_EQ(StyleDeclarations(row.before).Text(), row.before);
        StyleDeclarations style(row.before);
        style.Set("left", "7px");
        EXPECT_EQ(style.Text(), row.set);
        EXPECT_EQ(style.Pixels("left"), 7);
        StyleDeclarations other(row.before);
        other.Remove("left");
        EXPECT_EQ(other.Text(), row.removed);
    }
}

TEST(StyleDeclarationsTest, Lengths) {
    const std::pair<const char*, std::optional<int>> rows[] = {
        {"left:3px", 3},     {"left: -2.6PX !important", -3},
        {"left:0", 0},       {"left:3", {}},
        {"left:3em", {}},    {"left:auto", {}},
        {"left:1e99px", {}}, {"left:", {}},
        {"top:3px", {}},
    };
    for (const auto& [style, pixels] : rows)
        EXPECT_EQ(StyleDeclarations(style).Pixels("left"), pixels) << style;
}

std::unique_ptr<dom::Document> pageWithObject(const std::string& markup) {
    auto page = pageOf(markup);
    if (dom::Node* object = page->elementById("o"))
        page->setSelection({dom::SelectionType::Control, {}, {}, object});
    return page;
}

std::string body(const dom::Document& page) {
    return page.innerHTML(*page.body());
}

std::optional<Placement> hundred(const dom::Node&) {
    return Placement{100, 200, std::nullopt, std::nullopt};
}

TEST(LayerCommandsTest, InAndOutOfTheText) {
    struct Row {
        const char* name;
        const char* markup;
        Placement place;
        const char* layer;
    };
    const Row rows[] = {
        {"a picture",
         "<p>a<img id=o src=x></p>",
         {8, 9, {}, {}},
         "<p>a<img id=o src=x style=\"position: absolute; left: 8px; top: 9px\"></p>"},
        {"with a size",
         "<hr id=o>",
         {8, 9, 300, {}},
         "<hr id=o style=\"position: absolute; left: 8px; top: 9px; width: 300px\">"},
        {"behind what is declared",
         "<div id=o style='WIDTH:50%;color:red'>x</div>",
         {1, 2, 60, {}},
         "<div id=o style='WIDTH:50%;color:red; position: absolute; left: 1px; top: 2px; "
         "width: 60px'>x</div>"},
        {"one that was moved in the text",
         "<b id=o style='left:3px;position:relative;'>x</b>",
         {1, 2, {}, {}},
         "<b id=o style='left:3px;position:relative; position: absolute; left: 1px; top: 2px;'>x"
         "</b>"},
        {"above what is there",
         "<i style='position:absolute;z-index:4'></i><img id=o>",
         {1, 2, {}, {}},
         "<i style='position:absolute;z-index:4'></i><img id=o style=\"position: absolute; left: "
         "1px; top: 2px; z-index: 4\">"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = pageWithObject(row.markup);
        const std::string before = page->html();
        const auto place = [&](const dom::Node&) { return std::optional(row.place); };
        EXPECT_EQ(LayerState(*page, LayerCommand::MakeAbsolute), CommandState::Enabled);
        EXPECT_TRUE(RunLayerCommand(*page, LayerCommand::MakeAbsolute, place));
        EXPECT_EQ(body(*page), row.layer);
        EXPECT_EQ(LayerState(*page, LayerCommand::MakeAbsolute), CommandState::Latched);
        EXPECT_NE(page->selection().control, nullptr);
        page->undo();
        EXPECT_EQ(page->html(), before);
        page->redo();
        // What was written since goes too.
        RunLayerCommand(*page, LayerCommand::Lock, place);
        RunLayerCommand(*page, LayerCommand::SendBelowText, place);
        EXPECT_TRUE(RunLayerCommand(*page, LayerCommand::MakeAbsolute, place));
        const auto fresh = pageWithObject(row.markup);
        EXPECT_EQ(markupOf(*page), markupOf(*fresh));
    }
}

TEST(LayerCommandsTest, ALayerOfAnotherProgramComesBackToo) {
    const auto page = pageWithObject(
        "<div id=o style='left: 5px; POSITION: Absolute; top:1px; color: red; z-index:-1'></div>");
    EXPECT_TRUE(RunLayerCommand(*page, LayerCommand::MakeAbsolute, hundred));
    EXPECT_EQ(body(*page), "<div id=o style='color: red'></div>");
}

TEST(LayerCommandsTest, WhereTheyCanRun) {
    struct Row {
        const char* name;
        const char* markup;
        const char* states;  ///< absolute, lock, front, back, forward, backward, behind, above
    };
    const Row rows[] = {
        {"nothing selected", "<p>a</p>", "11111111"},
        {"a caret in the text", "<p>a|</p>", "11111111"},
        {"a caret in a layer", "<div style='position:absolute'><p>a|</p></div>", "73333337"},
        {"an object in the text", "<img id=o>", "31111111"},
        {"a layer", "<img id=o style='position:absolute;z-index:2'>", "73333337"},
        {"behind the text", "<img id=o style='position:absolute;z-index:-2'>", "73333373"},
        {"locked", "<img id=o data-locked style='position:fixed'>", "77333337"},
        {"an object in a layer", "<div style='position:absolute'><img id=o></div>", "31111111"},
        {"a cell", "<table><tr><td id=o>x</table>", "11111111"},
        {"part of a drawing", "<svg><path id=o></svg>", "11111111"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = pageWithObject(row.markup);
        std::string states;
        for (int i = 0; i < 8; ++i) {
            const auto command = LayerCommand(i);
            states += std::to_string(int(LayerState(*page, command)));
            if (states.back() == '1') {
                EXPECT_FALSE(RunLayerCommand(*page, command, hundred));
            }
        }
        EXPECT_EQ(states, row.states);
        EXPECT_FALSE(page->canUndo());
    }
    // Without a place from the view the object stays where it is.
    const auto page = pageWithObject("<img id=o>");
    const auto nowhere = [](const dom::Node&) { return std::optional<Placement>(); };
    EXPECT_FALSE(RunLayerCommand(*page, LayerCommand::MakeAbsolute, nowhere));
    EXPECT_FALSE(RunLayerCommand(*page, LayerCommand::MakeAbsolute, nullptr));
    EXPECT_FALSE(page->canUndo());
}

TEST(LayerCommandsTest, Order) {
    using enum LayerCommand;
    struct Row {
        const char* name;
        const char* before;  ///< z-index of each layer; "-" is none; "*" marks the object
        LayerCommand command;
        const char* after;
    };
    const Row rows[] = {
        {"to the front", "*3 7 5", BringToFront, "8 7 5"},
        {"to the front, later in the page", "7 *3 5", BringToFront, "7 7 5"},
        {"in front already", "1 *-", BringToFront, "1 1"},
        {"alone", "*-", BringToFront, "-"},
        {"at the front", "- - *4", BringToFront, "- - 4"},
        {"to the back", "3 *7", SendToBack, "3 0"},
        {"to the back of others without a number", "- - *-", SendToBack, "1 1 -"},
        {"behind a later one there is room", "*7 3", SendToBack, "0 3"},
        {"one step forward", "*- - -", BringForward, "1 - 1"},
        {"one step forward among numbers", "*1 2 3", BringForward, "3 2 3"},
        {"one step backward", "1 2 *3", SendBackward, "1 2 1"},
        {"at the back", "*- 1", SendBackward, "- 1"},
        {"not out of the text's way", "-3 *-1 0", BringToFront, "-3 -1 0"},
        {"behind the text", "*5 3", SendBelowText, "-1 3"},
        {"behind the text, in front of what is there", "*5 -1 -4", SendBelowText, "-1 -2 -4"},
        {"behind the text already", "*-3 -1", SendBelowText, "-3 -1"},
        {"in front of the text", "*-2 1", BringAboveText, "0 1"},
        {"the order behind the text", "*-1 -1", BringToFront, "-1 -2"},
        {"to the back behind the text", "-1 *-1", SendToBack, "-1 -2"},
    };
    const auto markup = [](const std::string& numbers) {
        std::string text;
        std::size_t at = 0;
        while (at < numbers.size()) {
            const std::size_t end = std::min(numbers.find(' ', at), numbers.size());
            std::string number = numbers.substr(at, end - at);
            const bool object = number[0] == '*';
            if (object) number.erase(0, 1);
            text += std::string("<div ") + (object ? "id=o" : "id=x") +
                    " style=\"position:absolute" + (number == "-" ? "" : ";z-index:" + number) +
                    "\"></div>";
            at = end + 1;
        }
        return text;
    };
    const auto numbers = [](const dom::Document& page) {
        std::string text;
        for (const dom::Node* layer : page.tags("div")) {
            if (!text.empty()) text += ' ';
            text += StyleDeclarations(layer->getAttribute("style")).Value("z-index").value_or("-");
        }
        return text;
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = pageWithObject(markup(row.before));
        const std::string before = page->html();
        const bool changed = RunLayerCommand(*page, row.command, hundred);
        EXPECT_EQ(numbers(*page), row.after);
        EXPECT_EQ(changed, page->html() != before);
        EXPECT_EQ(page->canUndo(), changed);
        // Once there, another press changes nothing.
        if (row.command == BringToFront || row.command == SendToBack) {
            EXPECT_FALSE(RunLayerCommand(*page, row.command, hundred));
        }
    }
    // Layers in another layer are not among them.
    const auto page = pageWithObject(
        "<div style='position:relative'><b style='position:absolute;z-index:9'></b>"
        "<img id=o style='position:absolute'></div><i style='position:absolute;z-index:30'></i>");
    EXPECT_TRUE(RunLayerCommand(*page, BringToFront, hundred));
    EXPECT_EQ(StyleDeclarations(page->elementById("o")->getAttribute("style")).Value("z-index"),
              "9");
}

TEST(LayerCommandsTest, PlacingAnObject) {
    struct Row {
        const char* name;
        const char* before;
        Placement place;
        const char* after;
    };
    const Row rows[] = {
        {"moved",
         "<b id=o style='position:absolute;left:1px;top:2px;color:red'></b>",
         {7, 8, {}, {}},
         "<b id=o style='position:absolute;left:7px;top:8px;color:red'></b>"},
        {"placed from the right before",
         "<b id=o style='position:absolute;right:1px'></b>",
         {7, {}, {}, {}},
         "<b id=o style='position:absolute; left: 7px'></b>"},
        {"a size in attributes",
         "<img id=o width=3>",
         {{}, {}, 30, 40},
         "<img id=o width=30 height=\"40\">"},
        {"a size in the style",
         "<img id=o style='width:3px'>",
         {{}, {}, 30, 40},
         "<img id=o style='width:30px' height=\"40\">"},
        {"the thickness of a line", "<hr id=o>", {{}, {}, {}, 4}, "<hr id=o size=\"4\">"},
        {"a field", "<input id=o>", {{}, {}, 50, {}}, "<input id=o style=\"width: 50px\">"},
        {"nothing new",
         "<img id=o width=3 style='left: 1px'>",
         {1, {}, 3, {}},
         "<img id=o width=3 style='left: 1px'>"},
        {"locked", "<img id=o data-locked=true>", {1, 2, 3, 4}, "<img id=o data-locked=true>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = pageWithObject(row.before);
        dom::Node* object = page->elementById("o");
        const bool changed = PlaceObject(*page, *object, row.place);
        EXPECT_EQ(body(*page), row.after);
        EXPECT_EQ(changed, page->canUndo());
        EXPECT_EQ(changed, std::string(row.after) != row.before);
        page->undo();
        EXPECT_EQ(body(*page), row.before);
    }
}

}  // namespace
}  // namespace pw
