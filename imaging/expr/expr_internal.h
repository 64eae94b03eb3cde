#pragma once
// Shared between the parts of the expression evaluator; not for callers.

#include "imaging/expr/expr.h"

#include <cstdint>

// A variable. The name follows the record in the same galloc block, so the
// value's address never moves: compiled programs hold it directly.
struct ExprSymbol {
    ExprSymbol* next; // bucket chain
    double value;
    int32_t length;
    char name[1];
};

struct ExprFunctionEntry {
    int kind;  // EXPR_FUNCTION_LIST or EXPR_FUNCTION_DIRECT
    int arity; // direct functions: 1 or 2
    union {
        ExprListFunction list;
        ExprFunction1 direct1;
        ExprFunction2 direct2;
    };
};

// A growable array of fixed-size records in galloc memory.
struct ExprArray {
    void* data;
    int32_t count;
    int32_t capacity;
    int32_t itemSize;
};
bool exprArrayInit(ExprArray* array, int32_t itemSize, int32_t capacity);
void exprArrayFree(ExprArray* array);
// Address of a new record at the end, or null when the array cannot grow
// (past `limit` records or out of memory; `*outOfMemory` tells which).
void* exprArrayPush(ExprArray* array, int32_t limit, bool* outOfMemory);
template <typename T> T* exprArrayAt(const ExprArray& array, int32_t index) {
    return static_cast<T*>(array.data) + index;
}

// The compiler's view of a pending operator: the (token, precedence) pair
// of the table plus what it needs to finish the operator later.
enum ExprOperatorKind {
    EXPR_KIND_PLAIN,    // unary or binary operator
    EXPR_KIND_GROUP,    // '(' or '[' in operand position
    EXPR_KIND_CALL,     // function call bracket
    EXPR_KIND_INDEX,    // '[' after an operand
    EXPR_KIND_QUESTION, // '?' waiting for its ':'
    EXPR_KIND_COLON,    // ':' of a conditional, finishing its else branch
    EXPR_KIND_SHORTCUT, // && or ||, holding the jump to patch
};
struct ExprOperator {
    int32_t token;
    int32_t precedence;
    int32_t kind;
    int32_t position; // in the text, for error messages
    int32_t patch;    // instruction whose jump target is still open, or function index
    int32_t count;    // arguments seen so far in a call
};
// The compiler's view of a pending value: its variable when it is one.
struct ExprOperand {
    double* variable;
};

struct ExprContext {
    int radix;
    int errorField;  // -1 after an error
    int errorNumber; // the last error's number, 0 when none
    int errorPosition;
    // Scratch of the compiler, kept between compiles: the operator stack,
    // the operand stack (what the compiler knows of each pending value) and
    // the program being built.
    ExprArray operators;
    ExprArray operands;
    ExprArray code;
    ExprSymbol** buckets; // EXPR_SYMBOL_BUCKETS chains
    int32_t functionCount;
    ExprFunctionEntry* functions; // EXPR_MAX_FUNCTIONS entries
    char** functionNames;         // the separate name table, same indices
};

// Instructions of a compiled program. Operators keep their token codes;
// the rest use codes above the token range.
enum ExprOpcode {
    EXPR_OP_CONSTANT = 256,
    EXPR_OP_LOAD,         // push *variable
    EXPR_OP_STORE,        // pop value and (ignored) target, *variable = value, push value
    EXPR_OP_SEQUENCE,     // pop b, pop a, push b
    EXPR_OP_DROP,         // pop (between statements)
    EXPR_OP_JUMP,         // continue at target
    EXPR_OP_JUMP_IF_ZERO, // pop; when 0, continue at target
    EXPR_OP_AND_SKIP,     // pop; when 0, push 0 and continue at target
    EXPR_OP_OR_SKIP,      // pop; when not 0, push 1 and continue at target
    EXPR_OP_TRUTH,        // replace the top with 0 or 1
    EXPR_OP_CALL_LIST,    // count = argument
    EXPR_OP_CALL_DIRECT1,
    EXPR_OP_CALL_DIRECT2,
    EXPR_OP_END,
};

struct ExprInstruction {
    int32_t opcode;
    int32_t argument; // jump target or argument count
    union {
        double constant;
        double* variable;
        ExprListFunction list;
        ExprFunction1 direct1;
        ExprFunction2 direct2;
    };
};

// One galloc block: this header, the instructions, then the value stack.
struct ExprProgram {
    int32_t instructionCount;
    int32_t stackSize;
    ExprInstruction* code;
    double* stack;
};

// Symbols (expr_context.cpp).
uint32_t exprHash(const char* name, int32_t length);
ExprSymbol* exprLookupSymbol(const ExprContext* context, const char* name, int32_t length);
ExprSymbol* exprCreateSymbol(ExprContext* context, const char* name, int32_t length);
int exprFindFunction(const ExprContext* context, const char* name, int32_t length);
void exprReportError(ExprContext* context, int number, int64_t position);

// Built-in functions (expr_functions.cpp), registered in table order.
bool exprRegisterBuiltins(ExprContext* context);

// Arithmetic shared by the interpreter (expr_run.cpp).
// Truncates toward zero, saturating at the 64-bit limits; NaN gives 0.
int64_t exprToInt64(double value);
double exprApplyUnary(int token, double value);
double exprApplyBinary(int token, double a, double b);

// Scanning helpers (expr_scan.cpp).
bool exprIsSpace(char c);
bool exprIsNameStart(char c);
bool exprIsNameChar(char c);
int exprDigitValue(char c); // 0..35, or 99 for a character that is no digit
// Reads a number at text[*pos] in the given radix; returns false (pos
// untouched) when there is none there.
bool exprScanNumber(const char* text, size_t length, size_t* pos, int radix, double* value);
// Unary operator in operand position; 0 when there is none.
int exprScanUnary(const char* text, size_t length, size_t pos, size_t* consumed);
