#pragma once
#include <QWidget>

#include <functional>

#include "platform/EditorSurface.h"

namespace pw {

/** A view that lets the user type into a page: one object seen from two sides. The widget owns
 *  it. */
struct EditorParts {
    QWidget* widget = nullptr;
    EditorSurface* surface = nullptr;
};

/** Makes one as a child of the given widget. */
using EditorFactory = std::function<EditorParts(QWidget* parent)>;

}  // namespace pw
