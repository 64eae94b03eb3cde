#pragma once
// The library's numeric expression language: operator-precedence parsing
// over doubles, named variables, a function table and radix-prefixed
// literals. The Pixel module evaluates one expression per channel for every
// pixel, so an expression is compiled once into an ExprProgram and then run
// as often as needed; the program reads and writes variables through the
// double* handles that exprSetVariable hands out, with no lookup by name.
//
//     ExprContext* ctx = exprCreate();
//     double* x = exprSetVariable(ctx, "x", 0);
//     ExprProgram* program = exprCompile(ctx, "x * 2 + 1");
//     for (...) { *x = ...; double v = exprRun(program); }
//     exprFreeProgram(program);
//     exprDestroy(ctx);
//
// Every block comes from galloc. Errors are reported through gprintf with
// one of these lines, and set the context's error field to -1:
//     "expression - ERROR UNDEFINED SYMBOL AT POSITION %d\n"    (error 5)
//     "expression - ERROR OPERAND SYNTAX ERROR AT POSITION %d\n" (error 7)
//     "expression - ERROR # %d AT POSITION %d\n"                 (any other)
// Positions are 0-based character offsets into the text. All errors are
// found while compiling; running a compiled program cannot fail.
//
// Language notes beyond the token and precedence tables below:
// - Spaces, tabs, CR and LF are skipped between tokens.
// - Numbers: an operand that starts with a decimal digit, or '.' and a
//   digit, is a number read in the current radix (letters are digits
//   10..35, either case). A word that starts with a letter is a number when
//   all its letters and digits are digits of the radix, so with radix 16
//   "ff" and "a" are numbers while "exp" stays a name; a variable whose name
//   reads as a number is reached quoted ('a'). After a leading 0 the
//   prefixes x, b, o (either case) switch to hex, binary, octal, each only
//   while the radix is below 34, 12 and 25 (above that they are digits).
//   A fraction after '.' is allowed in any radix; an exponent (e/E, optional
//   sign, decimal digits) only in radix 10.
// - Names are [A-Za-z_][A-Za-z0-9_]*; a quoted operand 'any text' is a name
//   that may hold operator characters. A name followed by '(' (spaces
//   allowed between) calls a function, otherwise it reads a variable.
//   Names are case-sensitive; the keyword `defined` is not.
// - `name = value` assigns and yields the value; an unknown name directly
//   before '=' is created with 0 while compiling. defined(name) is 1 when
//   the variable exists at compile time.
// - ';' separates statements (top level only); the result is the value of
//   the last statement. ',' separates function arguments; elsewhere it
//   yields its right operand. '(' and '[' group; ')' closes '(' and ']'
//   closes '['. `a[b]` is a + b.
// - `c ? a : b` (also `c !: a !? b`) evaluates only the chosen branch; && and
//   || (and ++) evaluate their right side only when needed and yield 0 or 1.
// Operations the language leaves open, as this library defines them:
// - every binary level associates left to right except '=' and '?' ':',
//   which associate right to left (so 2 ** 3 ** 2 is 64);
// - `--` is logical exclusive or (0 or 1); `%%` is the truncating remainder
//   (fmod), while `%` and `//` take the floor-based remainder;
// - unary `<` is floor and unary `>` is ceil; unary `<<` and `>>` shift a
//   64-bit integer one place;
// - `&` `|` `^` `~` `!` (binary) and the shifts work on 64-bit integers:
//   a double converts by truncation, saturating at the 64-bit limits, NaN
//   being 0; a shift by a negative count shifts the other way and a shift by
//   64 or more gives 0 (or -1 for a negative value shifted right).

#include <cstddef>

struct ExprContext;
struct ExprProgram;

// Token codes: one-character operators are their own character code.
enum ExprToken {
    EXPR_TOKEN_INVALID = -1,
    EXPR_TOKEN_END = 0,
    EXPR_TOKEN_SHL = 128,        // <<
    EXPR_TOKEN_SHR = 129,        // >>
    EXPR_TOKEN_LE = 130,         // <=
    EXPR_TOKEN_GE = 131,         // >=
    EXPR_TOKEN_EQ = 132,         // ==
    EXPR_TOKEN_NE = 133,         // != <> #
    EXPR_TOKEN_AND = 134,        // &&
    EXPR_TOKEN_OR = 135,         // || ++
    EXPR_TOKEN_XOR = 136,        // --
    EXPR_TOKEN_QUESTION = 137,   // !: acts as ?
    EXPR_TOKEN_COLON = 138,      // !? acts as :
    EXPR_TOKEN_INDEX = 139,      // [ after an operand, acts as +
    EXPR_TOKEN_POW = 140,        // **
    EXPR_TOKEN_MIN = 141,        // <?
    EXPR_TOKEN_MAX = 142,        // >?
    EXPR_TOKEN_FMOD = 143,       // %%
    EXPR_TOKEN_NEGATE = 144,     // unary -
    EXPR_TOKEN_COMPLEMENT = 145, // unary ~
    EXPR_TOKEN_NOT = 146,        // unary !
    EXPR_TOKEN_FLOOR = 147,      // unary <
    EXPR_TOKEN_CEIL = 148,       // unary >
    EXPR_TOKEN_SHL1 = 149,       // unary <<
    EXPR_TOKEN_SHR1 = 150,       // unary >>
    EXPR_TOKEN_DEFINED = 151,    // defined
};

// Error numbers. 5 and 7 have their own messages.
enum ExprError {
    EXPR_ERROR_NONE = 0,
    EXPR_ERROR_MEMORY = 1,     // a block could not be had while compiling
    EXPR_ERROR_NESTING = 2,    // more than EXPR_MAX_DEPTH pending operators or operands
    EXPR_ERROR_BRACKET = 3,    // a bracket without its partner, or the wrong partner
    EXPR_ERROR_CONDITION = 4,  // '?' without ':', or ':' without '?'
    EXPR_ERROR_UNDEFINED = 5,  // a name that is neither variable nor function
    EXPR_ERROR_ARGUMENTS = 6,  // wrong number of arguments for a direct function
    EXPR_ERROR_SYNTAX = 7,     // operand syntax error, or an operator without precedence
    EXPR_ERROR_ASSIGNMENT = 8, // the left side of '=' is not a variable
};

enum { EXPR_MAX_DEPTH = 1 << 20, EXPR_MAX_FUNCTIONS = 512, EXPR_SYMBOL_BUCKETS = 2048 };

// Function kinds: 1 takes a count and an array, 2 takes doubles directly.
enum ExprFunctionKind { EXPR_FUNCTION_LIST = 1, EXPR_FUNCTION_DIRECT = 2 };
using ExprListFunction = double (*)(int count, const double* values);
using ExprFunction1 = double (*)(double);
using ExprFunction2 = double (*)(double, double);

// Allocates a context with radix 10 and the built-in functions. When a block
// cannot be had it prints "Out of memory!\n" and returns null.
ExprContext* exprCreate();
void exprDestroy(ExprContext* context);

// Registers (or, for a name already known, replaces) a function. Returns 1,
// or 0 when the table already holds EXPR_MAX_FUNCTIONS names or the name is
// empty; such registrations are ignored.
int exprRegisterFunction(ExprContext* context, const char* name, ExprListFunction function);
int exprRegisterFunction(ExprContext* context, const char* name, ExprFunction1 function);
int exprRegisterFunction(ExprContext* context, const char* name, ExprFunction2 function);

// Radix for literals without prefix, 2..36. Returns the previous radix, or 0
// (and changes nothing) for a radix outside that range.
int exprSetRadix(ExprContext* context, int radix);
int exprRadix(const ExprContext* context);

// Creates the variable when needed, sets it and returns its handle: the
// address stays valid until exprDestroy. Null when a block cannot be had.
double* exprSetVariable(ExprContext* context, const char* name, double value);
// The handle of an existing variable, or null.
double* exprFindVariable(const ExprContext* context, const char* name);

// Compiles a text (of `length` bytes, or up to its NUL). On error reports it
// and returns null. A program must be freed before its context is destroyed.
ExprProgram* exprCompile(ExprContext* context, const char* text);
ExprProgram* exprCompile(ExprContext* context, const char* text, size_t length);
double exprRun(ExprProgram* program);
void exprFreeProgram(ExprProgram* program);

// Compiles, runs and frees in one go: the value, or 0 after an error.
double exprEvaluate(ExprContext* context, const char* text);
double exprEvaluate(ExprContext* context, const char* text, size_t length);

// The error field: -1 after the last compile or evaluate reported an error,
// else 0. The number and position of that error, for tests and callers that
// want more than the printed line.
int exprErrorField(const ExprContext* context);
int exprErrorNumber(const ExprContext* context);
int exprErrorPosition(const ExprContext* context);

// Precedence of a token by the table (a larger number binds tighter; 0 for
// a character that is no operator):
//   16 [ after an operand          8 ^ ~(binary)
//   15 unary - ~ ! < > << >>       7 | !(binary)
//   14 * / % %% //                 6 && <? >?
//   13 + -                         5 || ++ --
//   12 << >>                       4 ? : !: !?
//   11 < > <= >= **                3 =
//   10 == != <> #                  2 , ) ]
//    9 &                           1 end of text, ( [ in operand position, ;
int exprPrecedence(int token);

// Reads the operator at `text` (in operator position, after an operand) and
// returns its token code and length in bytes. A character that is no
// operator gives EXPR_TOKEN_INVALID (precedence 0). At the end: 0, length 0.
int exprScanOperator(const char* text, size_t length, size_t* consumed);
