#pragma once
// From an element of a page to the dialog of its properties.
#include "mainwindow/Context.h"

namespace pw {

/** Whether the current element of the page in front, or what it stands for, has a dialog. */
bool HasElementDialog(const MainContext& context);
/** Shows that dialog; nothing happens without one. */
void ShowElementDialog(MainContext& context);
/** True for an object that is selected as a whole, and has a dialog: a double click in it is not
 * one on a word. */
bool OpensOnDoubleClick(const MainContext& context);

}  // namespace pw
