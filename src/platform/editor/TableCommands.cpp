#include "platform/editor/TableCommands.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>

namespace pw {

namespace {

using dom::Document;
using dom::Node;
using Cell = TableGrid::Cell;
using Area = TableGrid::Area;

// The bounds that browsers put on spans; without them one attribute could ask for any memory.
constexpr int kMostColumns = 1000;
constexpr int kMostRows = 65534;

int SpanOf(const Node& cell, const char* attribute, int most) {
    const std::string* written = cell.attribute(attribute);
    const int span = written ? std::atoi(written->c_str()) : 1;
    return std::clamp(span, attribute[0] == 'r' ? 0 : 1, most);
}

bool IsCell(const Node& node) {
    return node.is("TD") || node.is("TH");
}

bool IsRowGroup(const Node& node) {
    return node.is("TBODY") || node.is("THEAD") || node.is("TFOOT");
}

void SetSpan(Document& document, Node& cell, const char* attribute, int span) {
    if (span > 1) {
        document.setAttribute(cell, attribute, std::to_string(span));
    } else if (cell.hasAttribute(attribute)) {
        document.setAttribute(cell, attribute, std::nullopt);
    }
}

/** What the selection stands for: a table and the area of cells in it. */
struct Target {
    TableGrid grid;
    Area area;
};

Node* CellAround(Node* node, const Node* table) {
    for (; node && node != table; node = node->parent()) {
        if (!IsCell(*node)) continue;
        const Node* owner = node;
        while (owner && !owner->is("TABLE"))
            owner = owner->parent();
        if (!table || owner == table) return node;
    }
    return nullptr;
}

Node* NodeAt(const dom::Position& position) {
    if (!position.node || !position.node->isElement()) return position.node;
    std::size_t index = 0;
    for (Node* child = position.node->firstChild(); child; child = child->next(), ++index) {
        if (index == position.offset) return child;
    }
    return position.node;
}

std::optional<Target> FindTarget(Document& document) {
    const dom::Selection& selection = document.selection();
    if (selection.type == dom::SelectionType::None) return std::nullopt;
    Node* from = selection.control ? selection.control : NodeAt(selection.anchor);
    Node* to = selection.control ? selection.control : NodeAt(selection.focus);
    if (!from || !to || !document.isConnected(from) || !document.isConnected(to)) {
        return std::nullopt;
    }
    // The innermost table that holds both ends in cells of its own.
    for (Node* table = from->parent(); table; table = table->parent()) {
        if (!table->is("TABLE") || !table->contains(*to)) continue;
        Node* first = CellAround(from, table);
        Node* last = CellAround(to, table);
        if (!first || !last) continue;
        TableGrid grid(*table);
        const Cell* a = grid.Find(*first);
        const Cell* b = grid.Find(*last);
        if (!a || !b) return std::nullopt;
        const Area area = grid.Around(*a, *b);
        return Target{std::move(grid), area};
    }
    return std::nullopt;
}

Node& NewCell(Document& document, const Cell* like) {
    Node* cell = document.createElement(like && like->element->is("TH") ? "th" : "td");
    // An empty cell has no height and takes no caret in old browsers.
    document.insertNode(*cell, *document.createText("\xC2\xA0"), nullptr);
    return *cell;
}

void PutCaretInto(Document& document, Node& cell) {
    Node* first = cell.firstChild();
    document.collapse(first && first->isText() ? dom::Position{first, 0} : dom::Position{&cell, 0});
}

/** The cell of this row in front of which something at `column` belongs; none: last. */
Node* CellFrom(const TableGrid& grid, int row, int column) {
    const Cell* best = nullptr;
    for (const Cell& cell : grid.Cells()) {
        if (cell.row == row && cell.column >= column && (!best || cell.column < best->column)) {
            best = &cell;
        }
    }
    return best ? best->element : nullptr;
}

/** In front of `column`'s cell, or behind the last cell of the row (not behind blanks there). */
void InsertIntoRow(Document& document, const TableGrid& grid, int row, int column, Node& cell) {
    Node& tr = *grid.Rows()[std::size_t(row)];
    if (Node* before = CellFrom(grid, row, column)) return document.insertNode(tr, cell, before);
    Node* behind = nullptr;
    for (Node* child = tr.firstChild(); child; child = child->next()) {
        if (IsCell(*child)) behind = child;
    }
    document.insertNode(tr, cell, behind ? behind->next() : tr.firstChild());
}

void RemoveTableIfEmpty(Document& document, Node& table) {
    if (TableGrid(table).Cells().empty()) document.removeNode(table);
}

bool InsertRow(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const int row = target.area.bottom;
    Node& above = *grid.Rows()[std::size_t(row)];
    Node* tr = document.createElement("tr");
    Node* first = nullptr;
    for (int column = 0; column < grid.ColumnCount();) {
        const Cell* cell = grid.At(row, column);
        if (cell && cell->LastRow() > row) {
            SetSpan(document, *cell->element, "rowspan", cell->rowSpan + 1);
        } else {
            Node& added = NewCell(document, cell);
            if (cell) SetSpan(document, added, "colspan", cell->columnSpan);
            document.insertNode(*tr, added, nullptr);
            if (!first) first = &added;
        }
        column = cell ? cell->LastColumn() + 1 : column + 1;
    }
    document.insertNode(*above.parent(), *tr, above.next());
    if (first) PutCaretInto(document, *first);
    return true;
}

bool DeleteRows(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const Area& area = target.area;
    // 1. Cells that reach out of the rows shrink; those that begin in them move to the first row
    //    behind, from the right to the left so that the places in that row stay right.
    std::vector<Cell> cells = grid.Cells();
    std::sort(cells.begin(), cells.end(),
              [](const Cell& a, const Cell& b) { return a.column > b.column; });
    for (const Cell& cell : cells) {
        const int overlap =
            std::min(cell.LastRow(), area.bottom) - std::max(cell.row, area.top) + 1;
        if (overlap <= 0 || overlap == cell.rowSpan) continue;
        SetSpan(document, *cell.element, "rowspan", cell.rowSpan - overlap);
        if (cell.row < area.top) continue;
        Node& next = *grid.Rows()[std::size_t(area.bottom + 1)];
        document.moveNode(next, *cell.element, CellFrom(grid, area.bottom + 1, cell.column));
    }
    // 2. The rows go.
    for (int row = area.top; row <= area.bottom; ++row) {
        document.removeNode(*grid.Rows()[std::size_t(row)]);
    }
    RemoveTableIfEmpty(document, grid.Table());
    return true;
}

bool InsertColumn(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const int column = target.area.right;
    Node* first = nullptr;
    for (int row = 0; row < int(grid.Rows().size());) {
        const Cell* cell = grid.At(row, column);
        if (cell && cell->LastColumn() > column) {
            SetSpan(document, *cell->element, "colspan", cell->columnSpan + 1);
        } else {
            Node& added = NewCell(document, cell);
            if (cell) SetSpan(document, added, "rowspan", cell->rowSpan);
            InsertIntoRow(document, grid, row, column + 1, added);
            if (!first) first = &added;
        }
        row = cell ? cell->LastRow() + 1 : row + 1;
    }
    const auto columns = grid.Columns();
    if (column < int(columns.size())) {
        Node& like = *columns[std::size_t(column)];
        const int span = SpanOf(like, "span", kMostColumns);
        if (span > 1) {
            SetSpan(document, like, "span", span + 1);
        } else {
            document.insertNode(*like.parent(), *document.createElement("col"), like.next());
        }
    }
    if (first) PutCaretInto(document, *first);
    return true;
}

bool DeleteColumns(Document& document, const Target& target) {
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
        const int span = SpanOf(col, "span", kMostColumns);
        if (span > 1) {
            SetSpan(document, col, "span", span - 1);
        } else {
            document.removeNode(col);
        }
    }
    RemoveTableIfEmpty(document, grid.Table());
    return true;
}

bool InsertCell(Document& document, const Target& target) {
    const Cell* cell = target.grid.At(target.area.bottom, target.area.right);
    Node& added = NewCell(document, cell);
    document.insertNode(*cell->element->parent(), added, cell->element->next());
    PutCaretInto(document, added);
    return true;
}

bool DeleteCells(Document& document, const Target& target) {
    for (const Cell& cell : target.grid.Cells()) {
        if (!target.area.Encloses(cell)) continue;
        Node* row = cell.element->parent();
        document.removeNode(*cell.element);
        const auto rest = row->children();
        if (std::none_of(rest.begin(), rest.end(), [](Node* node) { return IsCell(*node); })) {
            document.removeNode(*row);
        }
    }
    RemoveTableIfEmpty(document, target.grid.Table());
    return true;
}

bool IsBlank(Document& document, const Node& cell) {
    for (const Node* node = cell.firstChild(); node; node = node->following(&cell)) {
        if (node->isElement() && !node->is("BR")) {
            if (node->is("IMG") || node->is("INPUT") || node->is("HR") || node->is("TABLE")) {
                return false;
            }
        }
    }
    const std::string text = document.innerText(cell);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text.compare(at, 2, "\xC2\xA0") == 0) {
            ++at;
        } else if (!std::isspace(static_cast<unsigned char>(text[at]))) {
            return false;
        }
    }
    return true;
}

/** Rows in which no cell begins any more take no room: they go, and spans over them shrink. */
void RemoveHollowRows(Document& document, Node& table) {
    for (;;) {
        const TableGrid grid(table);
        std::set<int> begun;
        for (const Cell& cell : grid.Cells())
            begun.insert(cell.row);
        int hollow = -1;
        for (int row = 0; row < int(grid.Rows().size()); ++row) {
            if (!begun.count(row)) hollow = row;
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

std::vector<const Cell*> CellsIn(const Target& target) {
    std::vector<const Cell*> cells;
    for (const Cell& cell : target.grid.Cells()) {
        if (target.area.Encloses(cell)) cells.push_back(&cell);
    }
    return cells;
}

bool MergeCells(Document& document, const Target& target) {
    const auto cells = CellsIn(target);
    Node& kept = *cells.front()->element;
    bool blank = IsBlank(document, kept);
    for (std::size_t i = 1; i < cells.size(); ++i) {
        Node& merged = *cells[i]->element;
        if (!IsBlank(document, merged)) {
            if (blank) {
                for (Node* child : kept.children())
                    document.removeNode(*child);
                blank = false;
            } else {
                document.insertNode(kept, *document.createElement("br"), nullptr);
            }
            for (Node* child : merged.children())
                document.moveNode(kept, *child, nullptr);
        }
        document.removeNode(merged);
    }
    SetSpan(document, kept, "colspan", target.area.right - target.area.left + 1);
    SetSpan(document, kept, "rowspan", target.area.bottom - target.area.top + 1);
    RemoveHollowRows(document, target.grid.Table());
    PutCaretInto(document, kept);
    return true;
}

bool SplitCell(Document& document, const Target& target) {
    const TableGrid& grid = target.grid;
    const Cell& cell = *grid.At(target.area.top, target.area.left);
    Node& added = NewCell(document, &cell);
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
    }
    PutCaretInto(document, *cell.element);
    return true;
}

struct CommandEntry {
    TableCommand command;
    bool (*run)(Document&, const Target&);
    bool (*possible)(const Target&);
};

bool Always(const Target&) {
    return true;
}
bool SeveralCells(const Target& target) {
    return CellsIn(target).size() > 1;
}
bool OneCell(const Target& target) {
    return CellsIn(target).size() == 1;
}
/** Cells of several row groups can't become one. */
bool CanMerge(const Target& target) {
    const auto& rows = target.grid.Rows();
    return SeveralCells(target) && rows[std::size_t(target.area.top)]->parent() ==
                                       rows[std::size_t(target.area.bottom)]->parent();
}

constexpr CommandEntry kCommands[] = {
    {TableCommand::InsertRow, InsertRow, Always},
    {TableCommand::DeleteRows, DeleteRows, Always},
    {TableCommand::InsertColumn, InsertColumn, Always},
    {TableCommand::DeleteColumns, DeleteColumns, Always},
    {TableCommand::InsertCell, InsertCell, Always},
    {TableCommand::DeleteCells, DeleteCells, Always},
    {TableCommand::MergeCells, MergeCells, CanMerge},
    {TableCommand::SplitCell, SplitCell, OneCell},
};

const CommandEntry& EntryOf(TableCommand command) {
    return *std::find_if(std::begin(kCommands), std::end(kCommands),
                         [command](const CommandEntry& entry) { return entry.command == command; });
}

}  // namespace

TableGrid::TableGrid(Node& table) : table_(&table) {
    std::vector<std::pair<int, int>> groups;  // first row and number of rows
    const auto addRow = [this](Node& row) { rows_.push_back(&row); };
    for (Node* child = table.firstChild(); child; child = child->next()) {
        const int first = int(rows_.size());
        if (child->is("TR")) {
            addRow(*child);
        } else if (IsRowGroup(*child)) {
            for (Node* row = child->firstChild(); row; row = row->next()) {
                if (row->is("TR")) addRow(*row);
            }
        }
        if (int(rows_.size()) > first) groups.emplace_back(first, int(rows_.size()) - first);
    }
    slots_.resize(rows_.size());
    for (const auto& [first, count] : groups) {
        for (int row = first; row < first + count; ++row) {
            int column = 0;
            auto& line = slots_[std::size_t(row)];
            for (Node* child = rows_[std::size_t(row)]->firstChild(); child;
                 child = child->next()) {
                if (!IsCell(*child)) continue;
                while (column < int(line.size()) && line[std::size_t(column)] >= 0)
                    ++column;
                Cell cell{child, row, column, SpanOf(*child, "rowspan", kMostRows),
                          SpanOf(*child, "colspan", kMostColumns)};
                const int room = first + count - row;
                cell.rowSpan = cell.rowSpan == 0 ? room : std::min(cell.rowSpan, room);
                for (int r = row; r <= cell.LastRow(); ++r) {
                    auto& other = slots_[std::size_t(r)];
                    if (int(other.size()) <= cell.LastColumn()) {
                        other.resize(std::size_t(cell.LastColumn()) + 1, -1);
                    }
                    for (int c = column; c <= cell.LastColumn(); ++c) {
                        if (other[std::size_t(c)] < 0) other[std::size_t(c)] = int(cells_.size());
                    }
                }
                column = cell.LastColumn() + 1;
                columns_ = std::max(columns_, column);
                cells_.push_back(cell);
            }
        }
    }
}

const Cell* TableGrid::At(int row, int column) const {
    if (row < 0 || row >= int(slots_.size())) return nullptr;
    const auto& line = slots_[std::size_t(row)];
    if (column < 0 || column >= int(line.size()) || line[std::size_t(column)] < 0) return nullptr;
    return &cells_[std::size_t(line[std::size_t(column)])];
}

const Cell* TableGrid::Find(const Node& element) const {
    const auto found = std::find_if(cells_.begin(), cells_.end(),
                                    [&](const Cell& cell) { return cell.element == &element; });
    return found == cells_.end() ? nullptr : &*found;
}

Area TableGrid::Around(const Cell& a, const Cell& b) const {
    Area area{std::min(a.row, b.row), std::min(a.column, b.column),
              std::max(a.LastRow(), b.LastRow()), std::max(a.LastColumn(), b.LastColumn())};
    // Each cell that sticks out widens the area, which may touch further cells.
    for (bool grown = true; grown;) {
        grown = false;
        for (const Cell& cell : cells_) {
            if (!area.Touches(cell) || area.Encloses(cell)) continue;
            area.top = std::min(area.top, cell.row);
            area.left = std::min(area.left, cell.column);
            area.bottom = std::max(area.bottom, cell.LastRow());
            area.right = std::max(area.right, cell.LastColumn());
            grown = true;
        }
    }
    return area;
}

std::vector<Node*> TableGrid::Columns() const {
    std::vector<Node*> columns;
    const auto add = [&columns](Node& col) {
        for (int i = SpanOf(col, "span", kMostColumns); i > 0; --i)
            columns.push_back(&col);
    };
    for (Node* child = table_->firstChild(); child; child = child->next()) {
        if (child->is("COL")) add(*child);
        if (!child->is("COLGROUP")) continue;
        for (Node* col = child->firstChild(); col; col = col->next()) {
            if (col->is("COL")) add(*col);
        }
    }
    return columns;
}

bool CanRun(Document& document, TableCommand command) {
    const auto target = FindTarget(document);
    return target && EntryOf(command).possible(*target);
}

bool Run(Document& document, TableCommand command) {
    const auto target = FindTarget(document);
    const CommandEntry& entry = EntryOf(command);
    if (!target || !entry.possible(*target)) return false;
    Document::Step step(document);
    return entry.run(document, *target);
}

}  // namespace pw
