#include "expression/CVariableTable.h"

#include <memory>

CVariableTable::~CVariableTable()
{
    ClearVariables();
}

int32_t CVariableTable::GetVariable(const OQString& name, bool create)
{
    OQString lowerName = name;
    lowerName.MakeLower();
    if (const auto found = m_indexOfName.find(lowerName); found != m_indexOfName.end())
        return found->second;
    if (!create)
        return -1;
    std::unique_ptr<CVariable> variable(new CVariable { 0.0, lowerName });
    const int32_t index = Append({ .variable = variable.get(), .owned = true });
    static_cast<void>(variable.release()); // the entry owns it now
    return index;
}

void CVariableTable::AddVariables(const CVariableTable& other)
{
    for (const CVariableInfo& entry : other.m_entries) {
        if (!m_indexOfName.contains(entry.variable->name))
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

int32_t CVariableTable::Append(CVariableInfo entry)
{
    const auto place = m_indexOfName.emplace(entry.variable->name, GetVariableCount()).first;
    try {
        return m_entries.Add(entry);
    } catch (...) {
        m_indexOfName.erase(place); // the variable goes with the exception, and its name with it
        throw;
    }
}
