#pragma once
// The main image list: the numbers that trees, lists and windows carry in the core, and the icon of
// the desktop's theme that stands for each.
#include <QIcon>
#include <QString>

#include <span>

namespace pw {

struct ListedImage {
    int number;
    const char* iconName;
};

/** All of them, by number. */
std::span<const ListedImage> mainImageList();
/** Empty for a number that the list does not hold. */
QString iconName(int image);
QIcon imageIcon(int image);

}  // namespace pw
