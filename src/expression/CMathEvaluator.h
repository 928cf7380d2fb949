#pragma once

#include "expression/CMathEvaluatorError.h"
#include "expression/CMathProgram.h"
#include "expression/CVariableTable.h"

// An equation: a text such as "on=if(t<1,1,0);t=(t+1)%3" that is compiled once and run many times.
// Between two runs only the variables carry state. Used by one thread at a time; equation objects
// that share variables belong to the same thread.
class CMathEvaluator
{
public:
    static constexpr int32_t kStackSlots = 512; // an equation that needs more doesn't compile

    CMathEvaluator();
    ~CMathEvaluator();
    CMathEvaluator(const CMathEvaluator&) = delete;
    CMathEvaluator& operator=(const CMathEvaluator&) = delete;

    // Compiles; IsCompiled tells whether that went well, and error, if given, where and why not.
    // Variables keep their values, and those met before a fault stay.
    void SetEquation(const OQString& text, CMathEvaluatorError* error = nullptr);

    bool IsCompiled() const { return m_compiled; }

    // True if the last statement is a plain expression, so that Evaluate gives its value.
    bool HasResult() const { return m_compiled && m_hasResult; }

    // What a run costs at most, in units of about a nanosecond; 0 for a program that isn't
    // compiled.
    int64_t GetWork() const { return m_work; }

    // Runs the program. An equation that isn't compiled changes nothing and gives 0.0, and so does
    // the result of an equation that ends in an assignment: read the variables.
    double Evaluate();

    const CMathProgram& GetProgram() const { return m_program; }

    // The index of a variable; a missing one is added with the value 0.0 or, without create, gives
    // -1. An index and the reference to its value hold until ClearVariables or UseVariables.
    int32_t GetVariable(const OQString& name, bool create);

    double& Variable(int32_t index) { return m_table->Variable(index); }

    int32_t GetVariableCount() const { return m_table->GetVariableCount(); }

    const OQString& GetVariableName(int32_t index) const { return m_table->GetVariableName(index); }

    CVariableTable& GetVariableTable() { return *m_table; }

    // Shares the variables of the table whose names this equation's table doesn't have. Call it
    // before SetEquation: it doesn't touch a variable that the program already uses.
    void AddVariables(const CVariableTable& table);

    // Works on the given table from now on, without owning it; the program is dropped.
    void UseVariables(CVariableTable& table);

    // Empties the table. The program is dropped, since it holds addresses of the variables; other
    // equations on the same table must be compiled anew by the caller.
    void ClearVariables();

private:
    void DropProgram();

    CVariableTable* m_table;
    bool m_ownsTable = true;
    bool m_compiled = false;
    bool m_hasResult = false;
    int64_t m_work = 0;
    CMathProgram m_program;
};
