#pragma once
// What comes into an open page from outside the program: files and pictures that are dropped or
// pasted on it, and those that pasted markup refers to.
namespace pw {

struct MainContext;
class frmDocument;

/** From now on they are taken into the project and stand at the caret; what could not be taken is
 *  told to the user. Each drop or paste is one undo step of the page. */
void ConnectPageDrops(MainContext& context, frmDocument& page);

}  // namespace pw
