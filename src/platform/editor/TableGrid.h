#pragma once
// Tables as rows and columns, as far as the document alone tells.
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

/** TD or TH. */
bool IsCell(const dom::Node& node);
/** TBODY, THEAD or TFOOT. */
bool IsRowGroup(const dom::Node& node);
/** The row of a cell that stands where cells belong; none for others. */
dom::Node* RowOf(const dom::Node& cell);
/** The table of a row that stands where rows belong; none for others. */
dom::Node* TableOf(const dom::Node& row);
/** In the order of the page. */
std::vector<dom::Node*> RowsOf(const dom::Node& table);
/** The number of columns that a cell, COL or COLGROUP spans. */
int ColumnSpanOf(const dom::Node& element);

/** The cells of a table by row and column, with spans resolved as browsers do. A table whose spans
 *  add up to millions of places has none here. */
class TableGrid {
  public:
    struct Cell {
        dom::Node* element = nullptr;
        int row = 0;
        int column = 0;
        int rowSpan = 1;  ///< within its row group
        int columnSpan = 1;
        int LastRow() const { return row + rowSpan - 1; }
        int LastColumn() const { return column + columnSpan - 1; }
    };
    /** Rows and columns, both ends included. */
    struct Area {
        int top = 0;
        int left = 0;
        int bottom = -1;
        int right = -1;
        bool empty() const { return bottom < top || right < left; }
        bool Touches(const Cell& cell) const {
            return cell.row <= bottom && cell.LastRow() >= top && cell.column <= right &&
                   cell.LastColumn() >= left;
        }
        bool Encloses(const Cell& cell) const {
            return cell.row >= top && cell.LastRow() <= bottom && cell.column >= left &&
                   cell.LastColumn() <= right;
        }
    };

    explicit TableGrid(dom::Node& table);

    dom::Node& Table() const { return *table_; }
    const std::vector<dom::Node*>& Rows() const { return rows_; }
    const std::vector<Cell>& Cells() const { return cells_; }
    int ColumnCount() const { return columns_; }
    const Cell* At(int row, int column) const;
    const Cell* Find(const dom::Node& element) const;
    /** The smallest area that holds both cells and cuts none. */
    Area Around(const Cell& a, const Cell& b) const;
    /** COL elements, or COLGROUP without any, by column; a span counts as often as it says. */
    std::vector<dom::Node*> Columns() const;

  private:
    dom::Node* table_;
    std::vector<dom::Node*> rows_;
    std::vector<Cell> cells_;
    std::vector<std::vector<int>> slots_;  ///< by row and column: index into cells_, or -1
    int columns_ = 0;
};

}  // namespace pw
