#pragma once
// A grid where Enter in an in-place edit commits it and, when auto-enter-next is on (the
// default), moves the focus cell to the next editable cell of the row, then to the next row.

#include "ui/CCtrlBase.h"
#include "ui/CGridCtrl.h"

class CEnterGrid : public CGridCtrl, public CCtrlBase {
public:
    CEnterGrid() = default;
    void SetAutoEnterNext(bool enable) { m_autoEnterNext = enable; }
    bool GetAutoEnterNext() const { return m_autoEnterNext; }

protected:
    void OnEditEnter(int row, int col) override;

private:
    bool m_autoEnterNext = true;
};
