#pragma once
// The table commands, on the document. They act on the cells that the selection touches in the
// innermost table around it; each is one undo step. A range stands for the rectangle of cells
// between its ends. New rows come below and new columns to the right of what is selected, at the
// end of a table that is selected as an object. The caret follows into what is new, and stays near
// what has gone.
#include <string>
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

/** What a new table is made from; attributes are markup as it stands in a tag. */
struct InsertTableParam {
    int NumRows = 2;
    int NumCols = 2;
    std::string TableAttrs;
    std::string CellAttrs;
    std::string Caption;  ///< plain text; "" for none
};

/** In place of the selected text, with the caret in its first cell; one undo step. */
void InsertTable(dom::Document& document, const InsertTableParam& param);

/** The cells that the selection stands for when they are several; none for one cell, for a whole
 *  table and outside of tables. */
std::vector<dom::Node*> SelectedCells(const dom::Document& document);
bool CanRunTableCommand(const dom::Document& document, TableCommand command);
/** False, and nothing changed, where it cannot run. */
bool RunTableCommand(dom::Document& document, TableCommand command);

}  // namespace pw
