#pragma once
// CString <-> QString at the edge of the UI.

#include "platform/CString.h"

#include <QString>

namespace koqdde::ui {
inline QString ToQString(const CString& text) {
    return QString::fromWCharArray(text.GetString(), text.GetLength());
}
inline CString FromQString(const QString& text) {
    return CString(text.toStdWString());
}
} // namespace koqdde::ui
