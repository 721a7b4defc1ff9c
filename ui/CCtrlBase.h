#pragma once
// The command slots the host's table controls share. Nothing in this module calls them; they
// are there for derived controls that take part in the host's edit commands.

#include "ui/Win.h"

class CCtrlBase {
public:
    virtual ~CCtrlBase() = default;
    virtual BOOL New() { return FALSE; }
    virtual BOOL Del() { return FALSE; }
    virtual BOOL Copy() { return FALSE; }
    virtual BOOL Move() { return FALSE; }
    virtual BOOL MoveUp() { return FALSE; }
    virtual BOOL MoveDown() { return FALSE; }
    virtual BOOL Change() { return FALSE; }
    virtual BOOL SelChange() { return FALSE; }
};
