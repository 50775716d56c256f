#include "platform/editor/TableGrid.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

namespace pw {

using dom::Node;
using Cell = TableGrid::Cell;
using Area = TableGrid::Area;

namespace {

// The bounds that browsers put on spans; without them one attribute could ask for any memory.
constexpr int kMostColumns = 1000;
constexpr int kMostRows = 65534;
/** Each within its bounds, spans can still add up to gigabytes. */
constexpr std::size_t kMostSlots = 4'000'000;

int SpanOf(const Node& cell, const char* attribute, int most) {
    const std::string* written = cell.attribute(attribute);
    const int span = written ? std::atoi(written->c_str()) : 1;
    return std::clamp(span, attribute[0] == 'r' ? 0 : 1, most);
}

}  // namespace

bool IsCell(const Node& node) {
    return node.is("TD") || node.is("TH");
}

bool IsRowGroup(const Node& node) {
    return node.is("TBODY") || node.is("THEAD") || node.is("TFOOT");
}

int ColumnSpanOf(const Node& element) {
    return SpanOf(element, IsCell(element) ? "colspan" : "span", kMostColumns);
}

Node* RowOf(const Node& cell) {
    Node* row = cell.parent();
    return row && row->is("TR") ? row : nullptr;
}

Node* TableOf(const Node& row) {
    Node* table = row.parent();
    if (table && IsRowGroup(*table)) table = table->parent();
    return table && table->is("TABLE") ? table : nullptr;
}

std::vector<Node*> RowsOf(const Node& table) {
    std::vector<Node*> rows;
    for (Node* child = table.firstChild(); child; child = child->next()) {
        if (child->is("TR")) rows.push_back(child);
        if (!IsRowGroup(*child)) continue;
        for (Node* row = child->firstChild(); row; row = row->next()) {
            if (row->is("TR")) rows.push_back(row);
        }
    }
    return rows;
}

TableGrid::TableGrid(Node& table) : table_(&table), rows_(RowsOf(table)) {
    std::vector<std::pair<int, int>> groups;  // first row and number of rows
    for (int row = 0; row < int(rows_.size()); ++row) {
        const Node* group = rows_[std::size_t(row)]->parent();
        if (row == 0 || rows_[std::size_t(row) - 1]->parent() != group) groups.emplace_back(row, 0);
        ++groups.back().second;
    }
    slots_.resize(rows_.size());
    std::size_t slots = 0;
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
                          ColumnSpanOf(*child)};
                const int room = first + count - row;
                cell.rowSpan = cell.rowSpan == 0 ? room : std::min(cell.rowSpan, room);
                // With the columns in front of it, which the rows below may not have yet.
                slots += std::size_t(cell.rowSpan) * std::size_t(cell.columnSpan);
                if (slots > kMostSlots ||
                    std::size_t(column) * std::size_t(cell.rowSpan) > kMostSlots) {
                    cells_.clear();
                    slots_.clear();
                    columns_ = 0;
                    return;
                }
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
        for (int i = ColumnSpanOf(col); i > 0; --i)
            columns.push_back(&col);
    };
    for (Node* child = table_->firstChild(); child; child = child->next()) {
        if (child->is("COL")) add(*child);
        if (!child->is("COLGROUP")) continue;
        bool hasColumns = false;
        for (Node* col = child->firstChild(); col; col = col->next()) {
            if (!col->is("COL")) continue;
            hasColumns = true;
            add(*col);
        }
        if (!hasColumns) add(*child);
    }
    return columns;
}

}  // namespace pw
