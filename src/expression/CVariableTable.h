#pragma once

#include "expression/CVariableInfo.h"
#include "foundation/OQArray.h"

#include <cstdint>
#include <map>

// The variables of one or several equation objects, found by name without regard to case. Programs
// compiled on a table, and tables that share its variables, hold their addresses: once the table is
// cleared or destroyed they may not be used before they are compiled or cleared, too.
class CVariableTable
{
public:
    CVariableTable() = default;
    ~CVariableTable();
    CVariableTable(const CVariableTable&) = delete;
    CVariableTable& operator=(const CVariableTable&) = delete;

    // The index of a variable. A missing one is added at the end with the value 0.0, or, without
    // create, gives -1.
    int32_t GetVariable(const OQString& name, bool create);

    int32_t GetVariableCount() const { return m_entries.GetCount(); }

    const OQString& GetVariableName(int32_t index) const { return m_entries[index].variable->name; }

    double& Variable(int32_t index) { return m_entries[index].variable->value; }

    // Shares the other table's variables, except those whose names this table already has.
    void AddVariables(const CVariableTable& other);

    // Destroys the table's own variables: programs that use them must be compiled anew.
    void ClearVariables();

private:
    int32_t Append(CVariableInfo entry);

    OQArray<CVariableInfo> m_entries;
    // Equations come from strangers: with a plain search, or with a hash that can be foreseen, a
    // text of a million names would compile for hours.
    std::map<OQString, int32_t> m_indexOfName;
};
