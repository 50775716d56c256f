#pragma once
// What is done before a menu opens: the states of its commands are brought up to date, and what
// lists something is filled: the projects of the last time, the open pages.
#include "mainwindow/Context.h"

namespace pw {

void SetEditMenu(MainContext& context);
void SetFileMenu(MainContext& context);
void SetWindowMenu(MainContext& context);

}  // namespace pw
