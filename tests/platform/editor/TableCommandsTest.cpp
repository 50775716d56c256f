#include "platform/editor/TableCommands.h"

#include <gtest/gtest.h>

#include "platform/Text.h"
#include "support/MarkupSelection.h"

namespace pw {
namespace {

using test::markupOf;
using test::pageOf;
using test::stateOf;

/** Markup in short form: cells are written "[" … "]", header cells "{" … "}", rows "/" … ".", so
 *  that a table can be seen. */
std::string longForm(std::string text) {
    for (const auto& [mark, tag] : {std::pair{"[", "<td>"},
                                    {"]", "</td>"},
                                    {"{", "<th>"},
                                    {"}", "</th>"},
                                    {"/(", "<tr>"},
                                    {")/", "</tr>"}})
        text = ReplaceAll(text, mark, tag);
    return "<table><tbody>" + text + "</tbody></table>";
}

constexpr char kNew[] = "\xC2\xA0";  // what a new cell holds

std::string filled(std::string text) {
    return ReplaceAll(text, "_", kNew);
}

struct Row {
    const char* name;
    TableCommand command;
    std::string before;
    std::string after;
};

/** Runs each row, then undoes and redoes it. */
void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.before);
        const std::string before = stateOf(*page);
        ASSERT_TRUE(CanRunTableCommand(*page, row.command));
        ASSERT_TRUE(RunTableCommand(*page, row.command));
        const std::string after = markupOf(*page);
        EXPECT_EQ(stateOf(*page), filled(row.after) + " undo");
        page->undo();
        EXPECT_EQ(stateOf(*page), before + " redo");
        page->redo();
        EXPECT_EQ(stateOf(*page), after + " undo");
    }
}

TEST(TableCommandsTest, Rows) {
    using enum TableCommand;
    check({
        {"below the caret", InsertRow, longForm("/([a|][b])//([c][d])/"),
         longForm("/([a][b])//([|_][_])//([c][d])/")},
        {"in the column of the caret", InsertRow, longForm("/([a][b|])/"),
         longForm("/([a][b])//([_][|_])/")},
        {"below the last row that is touched", InsertRow, longForm("/([^a])//([b|])//([c])/"),
         longForm("/([a])//([b])//([|_])//([c])/")},
        {"a cell across the new row grows", InsertRow,
         "<table><tbody><tr><td "
         "rowspan=2>a</td><td>|b</td></tr><tr><td>c</td></tr></tbody></table>",
         "<table><tbody><tr><td rowspan=\"3\">a</td><td>b</td></tr><tr><td>|_</td></tr>"
         "<tr><td>c</td></tr></tbody></table>"},
        {"a row of headers is followed by a row of cells", InsertRow,
         longForm("/({a}{b|})//({c}[d])/"), longForm("/({a}{b})//([_][|_])//({c}[d])/")},
        {"the head of a row stays one", InsertRow, longForm("/({a}{b})//({c}[d|])/"),
         longForm("/({a}{b})//({c}[d])//({_}[|_])/")},
        {"with the looks of the row, and nothing else of it", InsertRow,
         "<table><tbody><tr class=x id=r><td align=left id=c width=9>a|</td></tr></tbody></table>",
         "<table><tbody><tr class=\"x\" id=\"r\"><td align=\"left\" id=\"c\" "
         "width=\"9\">a</td></tr>"
         "<tr class=\"x\"><td align=\"left\">|_</td></tr></tbody></table>"},
        {"delete", DeleteRows, longForm("/([a])//([b|])//([c])/"), longForm("/([a])//([|c])/")},
        {"delete the last", DeleteRows, longForm("/([a])//([b|])/"), longForm("/([|a])/")},
        {"delete those that are touched", DeleteRows, longForm("/([^a])//([b|])//([c])/"),
         longForm("/([|c])/")},
        {"cells that reach out of the row keep their order", DeleteRows,
         "<table><tbody><tr><td rowspan=2>a</td><td rowspan=2>b</td><td>c|</td></tr>"
         "<tr><td>d</td></tr></tbody></table>",
         "<table><tbody><tr><td>a</td><td>b</td><td>|d</td></tr></tbody></table>"},
        {"a cell from above shrinks", DeleteRows,
         "<table><tbody><tr><td rowspan=0>a</td><td>b</td></tr><tr><td>c|</td></tr>"
         "<tr><td>d</td></tr></tbody></table>",
         "<table><tbody><tr><td rowspan=\"2\">a</td><td>b</td></tr><tr><td>|d</td></tr></tbody>"
         "</table>"},
        {"with the last row the table goes", DeleteRows, "<p>x</p>" + longForm("/([a|][b])/"),
         "<p>x</p>|"},
        {"a group without rows goes", DeleteRows,
         "<table><thead><tr><td>a|</td></tr></thead><tbody><tr><td>b</td></tr></tbody></table>",
         longForm("/([|b])/")},
    });
}

TEST(TableCommandsTest, Columns) {
    using enum TableCommand;
    check({
        {"to the right of the caret", InsertColumn, longForm("/([a][b])//([c|][d])/"),
         longForm("/([a][_][b])//([c][|_][d])/")},
        {"a cell across the new column grows", InsertColumn,
         "<table><tbody><tr><td "
         "colspan=2>a</td></tr><tr><td>b|</td><td>c</td></tr></tbody></table>",
         "<table><tbody><tr><td colspan=\"3\">a</td></tr><tr><td>b</td><td>|_</td><td>c</td></tr>"
         "</tbody></table>"},
        {"beside a tall cell", InsertColumn,
         "<table><tbody><tr><td "
         "rowspan=2>a|</td><td>b</td></tr><tr><td>c</td></tr></tbody></table>",
         "<table><tbody><tr><td rowspan=\"2\">a</td><td rowspan=\"2\">|_</td><td>b</td></tr>"
         "<tr><td>c</td></tr></tbody></table>"},
        {"a short row is left alone", InsertColumn, longForm("/([a][b|])//([c])/"),
         longForm("/([a][b][|_])//([c])/")},
        {"the head of a column stays one", InsertColumn, longForm("/({a})//([b|])/"),
         longForm("/({a}{_})//([b][|_])/")},
        {"column elements follow", InsertColumn,
         "<table><colgroup><col width=9><col></colgroup><tbody><tr><td>a|</td><td>b</td></tr>"
         "</tbody></table>",
         "<table><colgroup><col width=\"9\"></col><col></col><col></col></colgroup><tbody><tr>"
         "<td>a</td><td>|_</td><td>b</td></tr></tbody></table>"},
        {"a column group grows", InsertColumn,
         "<table><colgroup></colgroup><tbody><tr><td>a|</td></tr></tbody></table>",
         "<table><colgroup span=\"2\"></colgroup><tbody><tr><td>a</td><td>|_</td></tr></tbody>"
         "</table>"},
        {"delete", DeleteColumns, longForm("/([a][b][c])//([d][e|][f])/"),
         longForm("/([a][c])//([d][|f])/")},
        {"delete those that are touched", DeleteColumns, longForm("/([^a][b|][c])//([d][e][f])/"),
         longForm("/([|c])//([f])/")},
        {"a wide cell shrinks", DeleteColumns,
         "<table><tbody><tr><td colspan=3>a</td></tr><tr><td>b|</td><td>c</td><td>d</td></tr>"
         "</tbody></table>",
         "<table><tbody><tr><td colspan=\"2\">a</td></tr><tr><td>|c</td><td>d</td></tr></tbody>"
         "</table>"},
        {"a column element that spans several", DeleteColumns,
         "<table><col span=3><tbody><tr><td>^a</td><td>b|</td><td>c</td></tr></tbody></table>",
         "<table><colgroup><col></col></colgroup><tbody><tr><td>|c</td></tr></tbody></table>"},
        {"a row that would be hollow goes", DeleteColumns,
         "<table><tbody><tr><td "
         "rowspan=2>a</td><td>b|</td></tr><tr><td>c</td></tr></tbody></table>",
         "<table><tbody><tr><td>|a</td></tr></tbody></table>"},
        {"with the last column the table goes", DeleteColumns, longForm("/([a|])//([b])/"), "|"},
    });
}

TEST(TableCommandsTest, Cells) {
    using enum TableCommand;
    check({
        {"insert behind", InsertCell, longForm("/([a|][b])/"), longForm("/([a][|_][b])/")},
        {"insert a header", InsertCell, longForm("/({a|})/"), longForm("/({a}{|_})/")},
        {"insert where the rectangle has a hole", InsertCell, longForm("/([x][y][^a])//([b|])/"),
         longForm("/([x][y][a])//([b][|_])/")},
        {"delete one", DeleteCells, longForm("/([a][b|][c])//([d])/"),
         longForm("/([a][|c])//([d])/")},
        {"delete those that are touched", DeleteCells, longForm("/([^a][b|][c])/"),
         longForm("/([|c])/")},
        {"the selection may be made backwards", DeleteCells, longForm("/([|a][b^][c])/"),
         longForm("/([|c])/")},
        {"a rectangle of them", DeleteCells, longForm("/([^a][b][c])//([d][e|][f])/"),
         longForm("/([|c])//([f])/")},
        {"a row without cells goes, and a span over it shrinks", DeleteCells,
         "<table><tbody><tr><td "
         "rowspan=2>a</td><td>b</td></tr><tr><td>c|</td></tr></tbody></table>",
         "<table><tbody><tr><td>a</td><td>|b</td></tr></tbody></table>"},
        {"the last one takes the table along", DeleteCells, "x" + longForm("/([a|])/") + "y",
         "x|y"},
        {"of the inner table alone", DeleteCells,
         "<table><tbody><tr><td>" + longForm("/([a|][b])/") + "</td></tr></tbody></table>",
         "<table><tbody><tr><td>" + longForm("/([|b])/") + "</td></tr></tbody></table>"},
    });
}

TEST(TableCommandsTest, MergeAndSplit) {
    using enum TableCommand;
    check({
        {"beside each other", MergeCells, longForm("/([^a][b|][c])/"),
         "<table><tbody><tr><td colspan=\"2\">|a<br>b</td><td>c</td></tr></tbody></table>"},
        {"a rectangle", MergeCells, longForm("/([^a][b][x])//([c][d|][y])/"),
         "<table><tbody><tr><td colspan=\"2\" rowspan=\"2\">|a<br>b<br>c<br>d</td><td>x</td></tr>"
         "<tr><td>y</td></tr></tbody></table>"},
        {"rows that would be hollow go", MergeCells, longForm("/([^a])//([b|])//([c])/"),
         longForm("/([|a<br>b])//([c])/")},
        {"blank cells leave nothing behind", MergeCells, longForm("/([^&nbsp;][<p>b|</p>][ ])/"),
         "<table><tbody><tr><td colspan=\"2\"><p>|b</p></td><td> </td></tr></tbody></table>"},
        {"what is no text counts", MergeCells,
         longForm("/([^<a name=m></a>][<!--c--><img src=x>|])/"),
         "<table><tbody><tr><td colspan=\"2\">|<a name=\"m\"></a><br><!--c--><img src=\"x\"></td>"
         "</tr></tbody></table>"},
        {"a span that sticks out widens the rectangle", MergeCells,
         "<table><tbody><tr><td>^a</td><td "
         "rowspan=2>b|</td></tr><tr><td>c</td></tr></tbody></table>",
         "<table><tbody><tr><td colspan=\"2\">|a<br>b<br>c</td></tr></tbody></table>"},
        {"blocks need no break between them", MergeCells, longForm("/([^<p>a</p>][b|])/"),
         "<table><tbody><tr><td colspan=\"2\"><p>|a</p>b</td></tr></tbody></table>"},
        {"split a wide cell", SplitCell,
         "<table><tbody><tr><td colspan=3>a|</td><td>b</td></tr></tbody></table>",
         "<table><tbody><tr><td colspan=\"2\">a|</td><td>_</td><td>b</td></tr></tbody></table>"},
        {"split a tall cell", SplitCell,
         "<table><tbody><tr><td>x</td><td "
         "rowspan=2>a|</td></tr><tr><td>y</td></tr></tbody></table>",
         longForm("/([x][a|])//([y][_])/")},
        {"split a plain cell", SplitCell,
         "<table><col width=5><tbody><tr><td>a|</td></tr><tr><td>b</td></tr></tbody></table>",
         "<table><colgroup><col width=\"5\"></col><col></col></colgroup><tbody><tr><td>a|</td>"
         "<td>_</td></tr><tr><td colspan=\"2\">b</td></tr></tbody></table>"},
    });
}

TEST(TableCommandsTest, WhereTheyCanRun) {
    struct Situation {
        const char* name;
        std::string markup;
        const char* possible;  ///< letters in the order of the commands: R r C c I d M S
    };
    const Situation rows[] = {
        {"no table", "<p>a|</p>", "--------"},
        {"a caret in a cell", longForm("/([a|][b])/"), "RrCcId-S"},
        {"a range within a cell", longForm("/([^ab|][b])/"), "RrCcId-S"},
        {"two cells", longForm("/([^a][b|])/"), "RrCcIdM-"},
        {"a triple click ends at the next cell",
         "<table><tbody><tr><td>^a</td><td>|<i>b</i></td></tr>"
         "</tbody></table>",
         "RrCcId-S"},
        {"or at the next row",
         "<table><tbody><tr><td>^a</td></tr><tr><td>|<i>b</i></td></tr>"
         "</tbody></table>",
         "RrCcId-S"},
        {"cells of two groups",
         "<table><thead><tr><td>^a</td></tr></thead><tbody><tr><td>b|</td>"
         "</tr></tbody></table>",
         "RrCcId--"},
        {"in the caption", "<table><caption>a|</caption><tbody><tr><td>b</td></tr></tbody></table>",
         "--------"},
        {"out of the table", "<p>^x</p>" + longForm("/([a|])/"), "--------"},
        {"a cell in no row",
         "<table><tbody><tr><td>" + longForm("") +
             "<i>a|</i></td></tr></tbody>"
             "</table>",
         "RrCcId-S"},
    };
    const auto states = [](const dom::Document& page) {
        std::string text = "RrCcIdMS";
        for (int i = 0; i < 8; ++i)
            if (!CanRunTableCommand(page, TableCommand(i))) text[std::size_t(i)] = '-';
        return text;
    };
    for (const Situation& row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = pageOf(row.markup);
        EXPECT_EQ(states(*page), row.possible);
        const std::string before = stateOf(*page);
        for (int i = 0; i < 8; ++i)
            if (row.possible[i] == '-') {
                EXPECT_FALSE(RunTableCommand(*page, TableCommand(i)));
            }
        EXPECT_EQ(stateOf(*page), before);
    }
    // An object in a cell stands for the cell, a table for all its cells.
    const auto page = pageOf(longForm("/([a<img>][b])/"));
    page->setSelection({dom::SelectionType::Control, {}, {}, page->images().front()});
    EXPECT_EQ(states(*page), "RrCcId-S");
    // So do places between cells.
    dom::Node* row = page->tags("tr").front();
    page->setSelection({dom::SelectionType::Text, {row, 0}, {row, 1}, nullptr});
    EXPECT_EQ(states(*page), "RrCcId-S");
    page->setSelection({dom::SelectionType::Text, {row, 2}, {row, 0}, nullptr});
    EXPECT_EQ(states(*page), "RrCcIdM-");
    dom::Node* table = page->tags("table").front();
    page->setSelection({dom::SelectionType::Control, {}, {}, table});
    EXPECT_EQ(states(*page), "R-C---M-");
    EXPECT_TRUE(RunTableCommand(*page, TableCommand::InsertRow));
    EXPECT_TRUE(RunTableCommand(*page, TableCommand::InsertColumn));
    EXPECT_EQ(page->selection().control, table);
    EXPECT_TRUE(RunTableCommand(*page, TableCommand::MergeCells));
    EXPECT_EQ(markupOf(*page),
              "<table><tbody><tr><td colspan=\"3\">|a<img><br>b</td></tr></tbody>"
              "</table>");
}

TEST(TableCommandsTest, UntouchedCellsKeepTheirBytes) {
    auto page = dom::Document::parseText(
        "<BODY><TABLE Border=1>\r\n<TR><TD>a<TD Width=9>b\r\n<TR><TD>c<TD>d\r\n</TABLE></BODY>");
    page->collapse({page->tags("td")[0]->firstChild(), 0});
    ASSERT_TRUE(RunTableCommand(*page, TableCommand::InsertColumn));
    EXPECT_EQ(page->html(),
              "<BODY><TABLE Border=1>\r\n<TR><TD>a<td>&nbsp;</td><TD Width=9>b\r\n"
              "<TR><TD>c<td>&nbsp;</td><TD>d\r\n</TABLE></BODY>");
}

TEST(TableCommandsTest, HostileSpansTakeNoTime) {
    std::string markup = "<table>";
    for (int i = 0; i < 2000; ++i)
        markup += "<tr><td rowspan=99999999 colspan=99999999>x<td colspan=-4 rowspan=-1>y";
    const auto page = dom::Document::parseText("<body>" + markup + "</table></body>");
    page->collapse({page->tags("td").back()->firstChild(), 0});
    EXPECT_TRUE(CanRunTableCommand(*page, TableCommand::DeleteCells));
    EXPECT_FALSE(RunTableCommand(*page, TableCommand::InsertRow));
    EXPECT_FALSE(page->canUndo());
}

TEST(TableCommandsTest, ANewTable) {
    const auto page = pageOf("<p>a^x|b</p>");
    InsertTableParam param;
    param.NumRows = 1;
    param.TableAttrs = "border=1 width=100%\r\n";
    param.Caption = "A & B";
    InsertTable(*page, param);
    const std::string table =
        "<table border=\"1\" width=\"100%\">\n<caption>A &amp; B</caption>\n<tbody><tr><td>|_</td>"
        "<td>_</td></tr>\n</tbody></table>";
    EXPECT_EQ(ReplaceAll(markupOf(*page), "</table>\n", "</table>"),
              "<p>a</p>" + filled(table) + "<p>b</p>");
    page->undo();
    EXPECT_EQ(stateOf(*page), "<p>a^x|b</p> redo");
}

}  // namespace
}  // namespace pw
