#include "platform/qt/ImageList.h"

#include <algorithm>
#include <iterator>

namespace pw {

namespace {

constexpr ListedImage images[] = {
    {1, "project-development"},    // project
    {2, "globe"},                  // web site
    {3, "view-pages-single"},      // window of a page
    {4, "document-edit"},          // window of a page in a changed site
    {5, "view-pages-single"},      // page
    {6, "view-split-left-right"},  // frame page
    {7, "folder"},
    {8, "folder-open"},
    {9, "mail-attachment"},     // attachment
    {10, "go-home"},            // default page
    {11, "view-task"},          // task
    {12, "task-complete"},      // finished task
    {20, "code-variable"},      // merge variable
    {21, "plugins"},            // object
    {23, "view-pages-single"},  // body
    {24, "bookmarks"},          // bookmark
    {25, "edit-comment"},       // comment
    {27, "draw-rectangle"},     // division, span
    {28, "view-form"},          // form
    {29, "insert-button"},      // button
    {30, "dialog-question"},    // open question
    {31, "checkbox"},           // check box
    {32, "view-hidden"},        // hidden field
    {33, "view-list-text"},     // list box
    {34, "choice-round"},       // option button
    {35, "text-field"},         // text box
    {36, "text-field-framed"},  // scrolling text box
    {37, "object-locked"},      // password
    {38, "view-sidetree"},      // frame
    {39, "view-split-left-right"},
    {41, "insert-image"},
    {42, "application-x-java-archive"},
    {43, "insert-horizontal-rule"},
    {44, "insert-link"},
    {45, "go-jump"},  // link target
    {46, "transform-move-horizontal"},
    {49, "dialog-scripts"},
    {50, "table"},
    {51, "adjustrow"},
    {53, "video-x-generic"},
    {57, "state-warning"},  // slow to download
    {58, "state-ok"},       // quick to download
    {59, "network-connect"},
    {60, "network-disconnect"},
    {64, "folder-remote"},
    {65, "folder"},
};

}  // namespace

std::span<const ListedImage> mainImageList() {
    return images;
}

QString iconName(int image) {
    const auto* const found = std::ranges::find(images, image, &ListedImage::number);
    return found == std::end(images) ? QString() : QString::fromLatin1(found->iconName);
}

QIcon imageIcon(int image) {
    const QString name = iconName(image);
    return name.isEmpty() ? QIcon() : QIcon::fromTheme(name);
}

}  // namespace pw
