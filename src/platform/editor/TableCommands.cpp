#include "platform/editor/TableCommands.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "platform/Text.h"
#include "platform/dom/Escape.h"
#include "platform/dom/RangeEdit.h"
#include "platform/dom/Tags.h"
#include "platform/dom/TextRange.h"
#include "platform/editor/TableGrid.h"

namespace pw {

namespace {

using dom::Document;
using dom::Node;
using Cell = TableGrid::Cell;
using Area = TableGrid::Area;

void SetSpan(Document& document, Node& cell, const char* attribute, int span) {
    if (span > 1) {
        document.setAttribute(cell, attribute, std::to_string(span));
    } else if (cell.hasAttribute(attribute)) {
        document.setAttribute(cell, attribute, std::nullopt);
    }
}

/** The cells at both ends of the selection, without a look at those between them: that is cheap
 *  enough to be asked with every step of the caret. */
struct Ends {
    Node* table = nullptr;
    Node* first = nullptr;
    Node* last = nullptr;
    bool whole = false;  ///< the table itself is selected
};

/** What the selection stands for: a table and the area of cells in it. */
struct Target {
    TableGrid grid;
    Area area;
    bool whole = false;
};

/** The cell of this table that holds a node. */
Node* CellAround(Node* node, const Node& table) {
    for (; node && node != &table; node = node->parent()) {
        const Node* row = IsCell(*node) ? RowOf(*node) : nullptr;
        if (row && TableOf(*row) == &table) return node;
    }
    return nullptr;
}

enum class Side { Start, End };

/** The node that a selection begins or ends with. */
Node* NodeAt(const dom::Position& position, Side side) {
    if (!position.node || !position.node->isElement()) return position.node;
    std::size_t wanted = position.offset;
    if (side == Side::End) {
        // The end of what is selected stands behind it. An end at the very start of a cell with
        // something in it comes of a triple click on the cell in front, and touches nothing here.
        if (wanted == 0 && position.node->firstChild() && IsCell(*position.node)) {
            Node* before = position.node->previous();
            while (before && !IsCell(*before))
                before = before->previous();
            Node* row = before ? nullptr : RowOf(*position.node);
            for (row = row ? row->previous() : nullptr; row && !before; row = row->previous()) {
                for (before = row->lastChild(); before && !IsCell(*before);)
                    before = before->previous();
            }
            return before ? before : position.node;
        }
        if (wanted > 0) --wanted;
    }
    for (Node* child = position.node->firstChild(); child; child = child->next()) {
        if (wanted-- == 0) return child;
    }
    return position.node;
}

std::optional<Ends> EndsOfTable(Node& table) {
    Ends ends{&table, nullptr, nullptr, true};
    for (Node* row : RowsOf(table)) {
        for (Node* cell = row->firstChild(); cell; cell = cell->next()) {
            if (!IsCell(*cell)) continue;
            if (!ends.first) ends.first = cell;
            ends.last = cell;
        }
    }
    if (!ends.first) return std::nullopt;
    return ends;
}

std::optional<Ends> FindEnds(const Document& document) {
    const dom::Selection& selection = document.selection();
    if (selection.type == dom::SelectionType::None) return std::nullopt;
    Node* from = selection.control;
    Node* to = selection.control;
    if (from && from->is("TABLE")) return EndsOfTable(*from);
    if (!from) {
        const bool forward = dom::comparePositions(selection.anchor, selection.focus) <= 0;
        const dom::Position& start = forward ? selection.anchor : selection.focus;
        const dom::Position& end = forward ? selection.focus : selection.anchor;
        from = NodeAt(start, Side::Start);
        to = selection.collapsed() ? from : NodeAt(end, Side::End);
    }
    if (!document.isConnected(from) || !document.isConnected(to)) return std::nullopt;
    // The innermost table that holds both ends in cells of its own.
    for (Node* table = from; table; table = table->parent()) {
        if (!table->is("TABLE") || !table->contains(*to)) continue;
        const Ends ends{table, CellAround(from, *table), CellAround(to, *table), false};
        if (ends.first && ends.last) return ends;
    }
    return std::nullopt;
}

std::optional<Target> FindTarget(const Document& document) {
    const auto ends = FindEnds(document);
    if (!ends) return std::nullopt;
    TableGrid grid(*ends->table);
    const Cell* first = grid.Find(*ends->first);
    const Cell* last = grid.Find(*ends->last);
    if (!first || !last) return std::nullopt;
    Area area = grid.Around(*first, *last);
    if (ends->whole) area = {0, 0, int(grid.Rows().size()) - 1, grid.ColumnCount() - 1};
    return Target{std::move(grid), area, ends->whole};
}

std::vector<const Cell*> CellsIn(const Target& target) {
    std::vector<const Cell*> cells;
    for (const Cell& cell : target.grid.Cells()) {
        if (target.area.Encloses(cell)) cells.push_back(&cell);
    }
    return cells;
}

// --- Making and placing -------------------------------------------------------------------------

/** What a new cell or row has in common with the one that it is made after. */
void CopyLook(Document& document, const Node& from, Node& to) {
    for (const char* name : {"align", "valign", "bgcolor", "nowrap", "class", "style"}) {
        if (const std::string* value = from.attribute(name))
            document.setAttribute(to, name, *value);
    }
}

/** A header cell is made only where the new row or column crosses one of headers. */
Node& NewCell(Document& document, const Node& like, bool header) {
    Node* cell = document.createElement(header ? "th" : "td");
    CopyLook(document, like, *cell);
    // An empty cell has no height and takes no caret in old browsers.
    document.insertNode(*cell, *document.createText("\xC2\xA0"), nullptr);
    return *cell;
}

void PutCaretInto(Document& document, Node& cell) {
    Node* place = &cell;
    while (place->firstChild() && !place->firstChild()->is("TABLE"))
        place = place->firstChild();
    if (!place->isText() && place != &cell) place = place->parent();
    document.collapse({place, 0});
}

/** Into the cell at this place, or the nearest one in front of it. */
void PutCaretAt(Document& document, Node& table, int row, int column) {
    const TableGrid grid(table);
    for (int r = std::min(row, int(grid.Rows().size()) - 1); r >= 0; --r) {
        for (int c = std::min(column, grid.ColumnCount() - 1); c >= 0; --c) {
            if (const Cell* cell = grid.At(r, c)) return PutCaretInto(document, *cell->element);
        }
    }
}

/** The node of this row in front of which a cell for `column` belongs; none: last. */
Node* PlaceInRow(const TableGrid& grid, int row, int column) {
    const Cell* best = nullptr;
    for (const Cell& cell : grid.Cells()) {
        if (cell.row == row && cell.column >= column && (!best || cell.column < best->column)) {
            best = &cell;
        }
    }
    if (best) return best->element;
    // Behind the last cell, not behind the blanks that follow it.
    Node* tr = grid.Rows()[std::size_t(row)];
    for (Node* child = tr->lastChild(); child; child = child->previous()) {
        if (IsCell(*child)) return child->next();
    }
    return tr->firstChild();
}

void InsertIntoRow(Document& document, const TableGrid& grid, int row, int column, Node& cell) {
    document.insertNode(*grid.Rows()[std::size_t(row)], cell, PlaceInRow(grid, row, column));
}

/** The columns behind this one move on by one. */
void InsertColumnElement(Document& document, const TableGrid& grid, int column) {
    const auto columns = grid.Columns();
    if (column >= int(columns.size())) return;
    Node& like = *columns[std::size_t(column)];
    const int span = ColumnSpanOf(like);
    if (span > 1 || like.is("COLGROUP")) {
        SetSpan(document, like, "span", span + 1);
    } else {
        document.insertNode(*like.parent(), *document.createElement("col"), like.next());
    }
}

bool IsHeader(const Cell& cell) {
    return cell.element->is("TH");
}

/** Rows in which no cell begins any more take no room: they go, and spans over them shrink. */
void RemoveHollowRows(Document& document, Node& table, const std::set<Node*>& hollowBefore) {
    for (;;) {
        const TableGrid grid(table);
        std::set<int> begun;
        for (const Cell& cell : grid.Cells())
            begun.insert(cell.row);
        int hollow = -1;
        for (int row = 0; row < int(grid.Rows().size()); ++row) {
            if (!begun.count(row) && !hollowBefore.count(grid.Rows()[std::size_t(row)]))
                hollow = row;
        }
        if (hollow < 0) return;
        for (const Cell& cell : grid.Cells()) {
            if (cell.row < hollow && cell.LastRow() >= hollow) {
                SetSpan(document, *cell.element, "rowspan", cell.rowSpan - 1);
            }
        }
        document.removeNode(*grid.Rows()[std::size_t(hollow)]);
    }
}

std::set<Node*> HollowRows(const TableGrid& grid) {
    std::set<Node*> rows(grid.Rows().begin(), grid.Rows().end());
    for (const Cell& cell : grid.Cells())
        rows.erase(grid.Rows()[std::size_t(cell.row)]);
    return rows;
}

/** After cells have gone: what is left of the table, and the caret at the place. */
void Tidy(Document& document, const Target& target) {
    Node& table = target.grid.Table();
    RemoveHollowRows(document, table, HollowRows(target.grid));
    if (TableGrid(table).Cells().empty()) {
        const dom::Position place{table.parent(), table.index()};
        document.removeNode(table);
        document.collapse(place);
    } else {
        PutCaretAt(document, table, target.area.top, target.area.left);
    }
}

// --- The commands -------------------------------------------------------------------------------

void InsertRow(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const int row = target.area.bottom;
    Node& above = *grid.Rows()[std::size_t(row)];
    Node* tr = document.createElement("tr");
    CopyLook(document, above, *tr);
    const bool headers =
        std::all_of(grid.Cells().begin(), grid.Cells().end(), [row](const Cell& cell) {
            return row < cell.row || row > cell.LastRow() || IsHeader(cell);
        });
    for (int column = 0; column < grid.ColumnCount();) {
        const Cell* cell = grid.At(row, column);
        if (cell && cell->LastRow() > row) {
            SetSpan(document, *cell->element, "rowspan", cell->rowSpan + 1);
        } else if (cell) {
            Node& added = NewCell(document, *cell->element, IsHeader(*cell) && !headers);
            SetSpan(document, added, "colspan", cell->columnSpan);
            document.insertNode(*tr, added, nullptr);
        }
        column = cell ? cell->LastColumn() + 1 : column + 1;
    }
    document.insertNode(*above.parent(), *tr, above.next());
    if (!target.whole) PutCaretAt(document, grid.Table(), row + 1, target.area.left);
}

void DeleteRows(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const Area& area = target.area;
    // 1. Cells that reach out of the rows shrink; those that begin in them move to the first row
    //    behind. From the left to the right: so those that go to one place keep their order.
    std::vector<Cell> cells = grid.Cells();
    std::sort(cells.begin(), cells.end(),
              [](const Cell& a, const Cell& b) { return a.column < b.column; });
    for (const Cell& cell : cells) {
        const int overlap =
            std::min(cell.LastRow(), area.bottom) - std::max(cell.row, area.top) + 1;
        if (overlap <= 0 || overlap == cell.rowSpan) continue;
        SetSpan(document, *cell.element, "rowspan", cell.rowSpan - overlap);
        if (cell.row < area.top) continue;
        Node& next = *grid.Rows()[std::size_t(area.bottom + 1)];
        document.moveNode(next, *cell.element, PlaceInRow(grid, area.bottom + 1, cell.column));
    }
    // 2. The rows go, with groups that would be empty.
    for (int row = area.top; row <= area.bottom; ++row) {
        Node& group = *grid.Rows()[std::size_t(row)]->parent();
        document.removeNode(*grid.Rows()[std::size_t(row)]);
        const auto rest = group.children();
        if (IsRowGroup(group) &&
            std::none_of(rest.begin(), rest.end(), [](Node* node) { return node->is("TR"); })) {
            document.removeNode(group);
        }
    }
    Tidy(document, target);
}

void InsertColumn(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const int column = target.area.right;
    const bool headers =
        std::all_of(grid.Cells().begin(), grid.Cells().end(), [column](const Cell& cell) {
            return column < cell.column || column > cell.LastColumn() || IsHeader(cell);
        });
    for (int row = 0; row < int(grid.Rows().size());) {
        const Cell* cell = grid.At(row, column);
        if (cell && cell->LastColumn() > column) {
            SetSpan(document, *cell->element, "colspan", cell->columnSpan + 1);
        } else if (cell) {
            Node& added = NewCell(document, *cell->element, IsHeader(*cell) && !headers);
            SetSpan(document, added, "rowspan", cell->rowSpan);
            InsertIntoRow(document, grid, row, column + 1, added);
        }
        row = cell ? cell->LastRow() + 1 : row + 1;
    }
    InsertColumnElement(document, grid, column);
    if (!target.whole) PutCaretAt(document, grid.Table(), target.area.top, column + 1);
}

void DeleteColumns(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const Area& area = target.area;
    for (const Cell& cell : grid.Cells()) {
        const int overlap =
            std::min(cell.LastColumn(), area.right) - std::max(cell.column, area.left) + 1;
        if (overlap <= 0) continue;
        if (overlap == cell.columnSpan) {
            document.removeNode(*cell.element);
        } else {
            SetSpan(document, *cell.element, "colspan", cell.columnSpan - overlap);
        }
    }
    const auto columns = grid.Columns();
    for (int column = area.left; column <= area.right && column < int(columns.size()); ++column) {
        Node& col = *columns[std::size_t(column)];
        const int span = ColumnSpanOf(col);
        if (span > 1) {
            SetSpan(document, col, "span", span - 1);
        } else {
            document.removeNode(col);
        }
    }
    Tidy(document, target);
}

void InsertCell(Document& document, const Target& target) {
    const Cell& cell = *CellsIn(target).back();
    Node& added = NewCell(document, *cell.element, IsHeader(cell));
    document.insertNode(*cell.element->parent(), added, cell.element->next());
    PutCaretInto(document, added);
}

void DeleteCells(Document& document, const Target& target) {
    for (const Cell* cell : CellsIn(target))
        document.removeNode(*cell->element);
    Tidy(document, target);
}

/** True when nothing is lost with the cell's content. */
bool IsBlank(const Node& cell) {
    static constexpr std::string_view kPlain[] = {"p", "div", "span", "font",   "b", "strong",
                                                  "i", "em",  "u",    "center", "br"};
    for (const Node* node = cell.firstChild(); node; node = node->following(&cell)) {
        if (node->isText()) {
            const std::string text = ReplaceAll(node->data(), "\xC2\xA0", " ");
            if (text.find_first_not_of(" \t\n\r\f") != std::string::npos) return false;
        } else if (std::find(std::begin(kPlain), std::end(kPlain), node->localName()) ==
                       std::end(kPlain) ||
                   node->hasAttribute("id") || node->hasAttribute("name")) {
            return false;
        }
    }
    return true;
}

void RemoveChildren(Document& document, const Node& element) {
    for (Node* child : element.children())
        document.removeNode(*child);
}

bool IsBlock(const Node* node) {
    return node && node->isElement() && dom::isBlockTag(node->localName());
}

/** Puts the content of one cell behind that of another, on a line of its own. */
void AppendContent(Document& document, Node& kept, const Node& merged) {
    if (IsBlank(kept)) {
        RemoveChildren(document, kept);
    } else if (!IsBlock(kept.lastChild()) && !IsBlock(merged.firstChild())) {
        document.insertNode(kept, *document.createElement("br"), nullptr);
    }
    for (Node* child : merged.children())
        document.moveNode(kept, *child, nullptr);
}

void MergeCells(Document& document, const Target& target) {
    const auto cells = CellsIn(target);
    Node& kept = *cells.front()->element;
    for (const Cell* cell : cells) {
        if (cell->element == &kept) continue;
        if (!IsBlank(*cell->element)) AppendContent(document, kept, *cell->element);
        document.removeNode(*cell->element);
    }
    SetSpan(document, kept, "colspan", target.area.right - target.area.left + 1);
    SetSpan(document, kept, "rowspan", target.area.bottom - target.area.top + 1);
    RemoveHollowRows(document, target.grid.Table(), HollowRows(target.grid));
    PutCaretInto(document, kept);
}

void SplitCell(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const Cell& cell = *CellsIn(target).front();
    Node& added = NewCell(document, *cell.element, IsHeader(cell));
    if (cell.columnSpan > 1) {
        const int left = (cell.columnSpan + 1) / 2;
        SetSpan(document, added, "colspan", cell.columnSpan - left);
        SetSpan(document, added, "rowspan", cell.rowSpan);
        SetSpan(document, *cell.element, "colspan", left);
        document.insertNode(*cell.element->parent(), added, cell.element->next());
    } else if (cell.rowSpan > 1) {
        const int upper = (cell.rowSpan + 1) / 2;
        SetSpan(document, added, "rowspan", cell.rowSpan - upper);
        SetSpan(document, *cell.element, "rowspan", upper);
        InsertIntoRow(document, grid, cell.row + upper, cell.column, added);
    } else {
        // The column becomes two, over which every other cell of it spans.
        for (const Cell& other : grid.Cells()) {
            if (other.element == cell.element || other.column > cell.column ||
                other.LastColumn() < cell.column) {
                continue;
            }
            SetSpan(document, *other.element, "colspan", other.columnSpan + 1);
        }
        document.insertNode(*cell.element->parent(), added, cell.element->next());
        InsertColumnElement(document, grid, cell.column);
    }
}

/** More than anybody means; what is typed by mistake must not fill the memory. */
constexpr int kMostNew = 500;

std::string TableMarkup(const InsertTableParam& param) {
    const auto tag = [](const std::string& name, const std::string& attributes) {
        return "<" + name + (attributes.empty() ? "" : " " + Trim(attributes)) + ">";
    };
    std::string row = "<tr>";
    for (int column = 0; column < std::clamp(param.NumCols, 1, kMostNew); ++column)
        row += tag("td", param.CellAttrs) + "&nbsp;</td>";
    row += "</tr>\n";
    std::string markup = tag("table", param.TableAttrs) + "\n";
    if (!param.Caption.empty())
        markup += "<caption>" + dom::escapeText(param.Caption, dom::TextContext::Normal, "\n") +
                  "</caption>\n";
    for (int i = 0; i < std::clamp(param.NumRows, 1, kMostNew); ++i)
        markup += row;
    return markup + "</table>";
}

struct CommandEntry {
    TableCommand command;
    void (*run)(Document&, const Target&);
    bool (*possible)(const Ends&);
};

bool Always(const Ends&) {
    return true;
}
/** A whole table is deleted by Delete. */
bool NotWhole(const Ends& ends) {
    return !ends.whole;
}
bool OneCell(const Ends& ends) {
    return ends.first == ends.last;
}
/** Cells of several row groups can't become one. */
bool CanMerge(const Ends& ends) {
    return ends.first != ends.last && RowOf(*ends.first)->parent() == RowOf(*ends.last)->parent();
}

constexpr CommandEntry kCommands[] = {
    {TableCommand::InsertRow, InsertRow, Always},
    {TableCommand::DeleteRows, DeleteRows, NotWhole},
    {TableCommand::InsertColumn, InsertColumn, Always},
    {TableCommand::DeleteColumns, DeleteColumns, NotWhole},
    {TableCommand::InsertCell, InsertCell, NotWhole},
    {TableCommand::DeleteCells, DeleteCells, NotWhole},
    {TableCommand::MergeCells, MergeCells, CanMerge},
    {TableCommand::SplitCell, SplitCell, OneCell},
};

const CommandEntry& EntryOf(TableCommand command) {
    return *std::find_if(std::begin(kCommands), std::end(kCommands),
                         [command](const CommandEntry& entry) { return entry.command == command; });
}

}  // namespace

void InsertTable(Document& document, const InsertTableParam& param) {
    Document::Step step(document);
    dom::TextRange range = dom::TextRange::fromSelection(document);
    range.pasteHTML(TableMarkup(param));
    Node* table = NodeAt(range.end(), Side::End);
    while (table && !table->is("TABLE"))
        table = table->previous() ? table->previous() : table->parent();
    if (table) PutCaretAt(document, *table, 0, 0);
}

std::vector<Node*> SelectedCells(const Document& document) {
    std::vector<Node*> cells;
    const auto ends = FindEnds(document);
    if (!ends || ends->whole || ends->first == ends->last) return cells;
    if (const auto target = FindTarget(document)) {
        for (const Cell* cell : CellsIn(*target))
            cells.push_back(cell->element);
    }
    return cells;
}

bool CanRunTableCommand(const Document& document, TableCommand command) {
    const auto ends = FindEnds(document);
    return ends && EntryOf(command).possible(*ends);
}

bool RunTableCommand(Document& document, TableCommand command) {
    if (!CanRunTableCommand(document, command)) return false;
    const auto target = FindTarget(document);
    if (!target) return false;
    Document::Step step(document);
    EntryOf(command).run(document, *target);
    return true;
}

}  // namespace pw
