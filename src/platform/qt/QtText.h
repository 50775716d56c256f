#pragma once
// Texts and paths on their way between the core (UTF-8, backslashes) and Qt.
#include <QString>

#include <string>

#include "platform/FileSystem.h"

namespace pw {

inline QString toQt(const std::string& text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

inline std::string fromQt(const QString& text) {
    return text.toStdString();
}

/** \home\ann as /home/ann, the form that people and Qt read. */
inline QString toNativeQt(const std::string& path) {
    return toQt(ToNativePath(path));
}

inline std::string fromNativeQt(const QString& path) {
    return FromNativePath(fromQt(path));
}

/** A caption without its "&" marks, as tool tips and screen readers want it. */
inline QString withoutMnemonic(const QString& caption) {
    QString plain;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        const bool mark = caption[i] == QLatin1Char('&') && i + 1 < caption.size() &&
                          caption[i + 1] != QLatin1Char(' ');
        if (mark) ++i;
        plain += caption[i];
    }
    return plain;
}

}  // namespace pw
