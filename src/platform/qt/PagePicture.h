#pragma once
#include <QString>

namespace pw {

/** Draws a page as a visitor sees it, without a window on the screen, into a picture file; its kind
 *  follows from the name. False when the page or the picture can't be read or written. */
bool takePagePicture(const QString& page, const QString& picture);

}  // namespace pw
