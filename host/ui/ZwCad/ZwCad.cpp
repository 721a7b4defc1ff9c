#include "host/ui/ZwCad/ZwCad.h"

#include <QGuiApplication>
#include <QScreen>

CWnd* zcedGetZcadFrame() {
    return nullptr;
}

CRect GetCadFrameRect() {
    if (CWnd* frame = zcedGetZcadFrame(); frame && frame->IsWindow())
        return frame->GetWindowRect();
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return CRect();
    QRect area = screen->availableGeometry();
    return CRect(area.left(), area.top(), area.left() + area.width(), area.top() + area.height());
}
