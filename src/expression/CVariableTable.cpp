#include "expression/CVariableTable.h"

CVariableTable::~CVariableTable()
{
    ClearVariables();
}

int32_t CVariableTable::GetVariable(const OQString& name, bool create)
{
    OQString lowerName = name;
    lowerName.MakeLower();
    if (const auto found = m_indexOfName.find(lowerName.View()); found != m_indexOfName.end())
        return found->second;
    if (!create)
        return -1;
    Append({ .variable = new CVariable { 0.0, lowerName }, .owned = true });
    return GetVariableCount() - 1;
}

void CVariableTable::AddVariables(const CVariableTable& other)
{
    for (const CVariableInfo& entry : other.m_entries) {
        if (!m_indexOfName.contains(entry.variable->name.View()))
            Append({ .variable = entry.variable, .owned = false });
    }
}

void CVariableTable::ClearVariables()
{
    m_indexOfName.clear();
    for (const CVariableInfo& entry : m_entries) {
        if (entry.owned)
            delete entry.variable;
    }
    m_entries.Clear();
}

void CVariableTable::Append(CVariableInfo entry)
{
    m_indexOfName.emplace(entry.variable->name.View(), GetVariableCount());
    m_entries.Add(entry);
}
