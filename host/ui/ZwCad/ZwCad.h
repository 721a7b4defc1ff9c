#pragma once
// Stand-in for the drawing program's frame window, on which the module's dialogs centre. The
// programs here play the host without a drawing program, so there is no frame window and the
// frame is the primary screen's work area.

#include "ui/CWnd.h"

// The frame window; null here.
CWnd* zcedGetZcadFrame();
// The frame's window rectangle in screen coordinates, or the primary screen's work area.
CRect GetCadFrameRect();
