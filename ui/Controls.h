#pragma once
// All the control classes of the dialogs.

#include "ui/CButton.h"
#include "ui/CComboBox.h"
#include "ui/CDialog.h"
#include "ui/CListBox.h"
#include "ui/CListCtrl.h"
#include "ui/CTabCtrl.h"
#include "ui/CTreeCtrl.h"
