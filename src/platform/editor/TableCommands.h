#pragma once
// The table commands, on the document. They act on the cells that the selection touches in the
// innermost table around it; each is one undo step. New rows come below and new columns to the
// right of what is selected.
#include <vector>

#include "platform/dom/Document.h"

namespace pw {

enum class TableCommand {
    InsertRow,
    DeleteRows,
    InsertColumn,
    DeleteColumns,
    InsertCell,
    DeleteCells,
    MergeCells,
    SplitCell
};

/** The cells of a table by row and column, with spans resolved as browsers do. */
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
    /** COL elements by column; a span counts as often as it says. */
    std::vector<dom::Node*> Columns() const;

  private:
    dom::Node* table_;
    std::vector<dom::Node*> rows_;
    std::vector<Cell> cells_;
    std::vector<std::vector<int>> slots_;  ///< by row and column: index into cells_, or -1
    int columns_ = 0;
};

bool CanRun(dom::Document& document, TableCommand command);
/** False, and nothing changed, where it cannot run. */
bool Run(dom::Document& document, TableCommand command);

}  // namespace pw
