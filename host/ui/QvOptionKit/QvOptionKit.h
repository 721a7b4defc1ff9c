#pragma once
// Stand-in for the host's option library: what a cell or a value box offers for an attribute
// code. The host decides by the attribute's kind; here the kind comes from the catalog: an
// attribute code that has a drop-down list somewhere in the catalog is of kind 9, whose
// options are read from the project by drop key (CAtt::GetDropList); a measured quantity
// (the "AM_" codes) is a number; everything else is free text. Neither of the last two kinds
// offers options.

#include <string>
#include <vector>

class CellData {
public:
    enum Kind {
        kText = 0,     // typed freely
        kNumber = 3,   // a measured quantity, typed
        kDropList = 9, // the options come from the project's drop-down lists
    };

    CellData(std::wstring code, int kind, std::vector<std::wstring> options = {})
        : m_code(std::move(code)), m_kind(kind), m_options(std::move(options)) {}
    virtual ~CellData() = default;

    // The options the cell offers itself, in display order.
    virtual std::vector<std::wstring>* GetOptions() { return &m_options; }
    virtual const std::wstring& GetCode() const { return m_code; }
    virtual bool IsEditable() const { return true; }
    virtual int GetKind() const { return m_kind; }

private:
    std::wstring m_code;
    int m_kind;
    std::vector<std::wstring> m_options;
};

class CellDataFactory {
public:
    // Never null; give the object back with Release.
    CellData* Create(const std::wstring& code);
    void Release(CellData* data);
};
