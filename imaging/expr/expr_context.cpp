// The evaluator context: creation, the symbol table, the function table and
// error reporting.

#include "imaging/expr/expr_internal.h"

#include "imaging/galloc.h"

#include <climits>
#include <cstring>
#include <new>

namespace {

constexpr int32_t kInitialScratch = 64;

void freeContext(ExprContext* context) {
    if (context->buckets) {
        for (int b = 0; b < EXPR_SYMBOL_BUCKETS; ++b) {
            ExprSymbol* symbol = context->buckets[b];
            while (symbol) {
                ExprSymbol* next = symbol->next;
                gfree(symbol);
                symbol = next;
            }
        }
        gfree(context->buckets);
    }
    if (context->functionNames) {
        for (int32_t i = 0; i < context->functionCount; ++i)
            gfree(context->functionNames[i]);
        gfree(context->functionNames);
    }
    if (context->functions) gfree(context->functions);
    exprArrayFree(&context->operators);
    exprArrayFree(&context->operands);
    exprArrayFree(&context->code);
    gfree(context);
}

bool allocateTables(ExprContext* context) {
    context->buckets =
        static_cast<ExprSymbol**>(galloc(EXPR_SYMBOL_BUCKETS * int32_t{sizeof(ExprSymbol*)}));
    // Cleared at once: freeContext walks the chains if a later block fails.
    if (context->buckets) memset(context->buckets, 0, EXPR_SYMBOL_BUCKETS * sizeof(ExprSymbol*));
    context->functions = static_cast<ExprFunctionEntry*>(
        galloc(EXPR_MAX_FUNCTIONS * int32_t{sizeof(ExprFunctionEntry)}));
    context->functionNames =
        static_cast<char**>(galloc(EXPR_MAX_FUNCTIONS * int32_t{sizeof(char*)}));
    return context->buckets && context->functions && context->functionNames;
}

int clampLength(size_t length) {
    return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

int registerEntry(ExprContext* context, const char* name, const ExprFunctionEntry& entry) {
    if (!context || !name || !*name) return 0;
    int32_t length = clampLength(strlen(name));
    int index = exprFindFunction(context, name, length);
    if (index >= 0) {
        context->functions[index] = entry;
        return 1;
    }
    if (context->functionCount >= EXPR_MAX_FUNCTIONS) return 0;
    auto* copy = static_cast<char*>(galloc(length + 1));
    if (!copy) return 0;
    memcpy(copy, name, static_cast<size_t>(length) + 1);
    context->functionNames[context->functionCount] = copy;
    context->functions[context->functionCount] = entry;
    ++context->functionCount;
    return 1;
}

} // namespace

// ---- Growable arrays ---------------------------------------------------------

bool exprArrayInit(ExprArray* array, int32_t itemSize, int32_t capacity) {
    array->itemSize = itemSize;
    array->count = 0;
    array->capacity = 0;
    array->data = galloc(itemSize * capacity);
    if (!array->data) return false;
    array->capacity = capacity;
    return true;
}

void exprArrayFree(ExprArray* array) {
    if (array->data) gfree(array->data);
    array->data = nullptr;
    array->count = array->capacity = 0;
}

void* exprArrayPush(ExprArray* array, int32_t limit, bool* outOfMemory) {
    *outOfMemory = false;
    if (array->count >= limit) return nullptr;
    if (array->count == array->capacity) {
        int64_t grown = array->capacity < 8 ? 16 : int64_t{array->capacity} * 2;
        if (grown > limit) grown = limit;
        if (grown * array->itemSize > INT32_MAX) {
            *outOfMemory = true;
            return nullptr;
        }
        void* data = galloc(static_cast<int32_t>(grown * array->itemSize));
        if (!data) {
            *outOfMemory = true;
            return nullptr;
        }
        memcpy(data, array->data, static_cast<size_t>(array->count) * array->itemSize);
        gfree(array->data);
        array->data = data;
        array->capacity = static_cast<int32_t>(grown);
    }
    return static_cast<char*>(array->data) + static_cast<size_t>(array->count++) * array->itemSize;
}

// ---- Context -----------------------------------------------------------------

ExprContext* exprCreate() {
    auto* context = static_cast<ExprContext*>(galloc(sizeof(ExprContext)));
    if (!context) {
        gprintf("Out of memory!\n");
        return nullptr;
    }
    memset(static_cast<void*>(context), 0, sizeof(ExprContext));
    context->radix = 10;
    bool ok = allocateTables(context) &&
              exprArrayInit(&context->operators, sizeof(ExprOperator), kInitialScratch) &&
              exprArrayInit(&context->operands, sizeof(ExprOperand), kInitialScratch) &&
              exprArrayInit(&context->code, sizeof(ExprInstruction), kInitialScratch) &&
              exprRegisterBuiltins(context);
    if (!ok) {
        freeContext(context);
        gprintf("Out of memory!\n");
        return nullptr;
    }
    return context;
}

void exprDestroy(ExprContext* context) {
    if (context) freeContext(context);
}

int exprRegisterFunction(ExprContext* context, const char* name, ExprListFunction function) {
    if (!function) return 0;
    ExprFunctionEntry entry{};
    entry.kind = EXPR_FUNCTION_LIST;
    entry.list = function;
    return registerEntry(context, name, entry);
}

int exprRegisterFunction(ExprContext* context, const char* name, ExprFunction1 function) {
    if (!function) return 0;
    ExprFunctionEntry entry{};
    entry.kind = EXPR_FUNCTION_DIRECT;
    entry.arity = 1;
    entry.direct1 = function;
    return registerEntry(context, name, entry);
}

int exprRegisterFunction(ExprContext* context, const char* name, ExprFunction2 function) {
    if (!function) return 0;
    ExprFunctionEntry entry{};
    entry.kind = EXPR_FUNCTION_DIRECT;
    entry.arity = 2;
    entry.direct2 = function;
    return registerEntry(context, name, entry);
}

int exprSetRadix(ExprContext* context, int radix) {
    if (!context || radix < 2 || radix > 36) return 0;
    int previous = context->radix;
    context->radix = radix;
    return previous;
}

int exprRadix(const ExprContext* context) {
    return context ? context->radix : 0;
}

int exprErrorField(const ExprContext* context) {
    return context ? context->errorField : -1;
}
int exprErrorNumber(const ExprContext* context) {
    return context ? context->errorNumber : 0;
}
int exprErrorPosition(const ExprContext* context) {
    return context ? context->errorPosition : 0;
}

void exprReportError(ExprContext* context, int number, int64_t position) {
    int at = position > INT_MAX ? INT_MAX : static_cast<int>(position);
    context->errorField = -1;
    context->errorNumber = number;
    context->errorPosition = at;
    if (number == EXPR_ERROR_UNDEFINED)
        gprintf("expression - ERROR UNDEFINED SYMBOL AT POSITION %d\n", at);
    else if (number == EXPR_ERROR_SYNTAX)
        gprintf("expression - ERROR OPERAND SYNTAX ERROR AT POSITION %d\n", at);
    else
        gprintf("expression - ERROR # %d AT POSITION %d\n", number, at);
}

// ---- Symbols -----------------------------------------------------------------

uint32_t exprHash(const char* name, int32_t length) {
    uint32_t hash = 5381;
    for (int32_t i = 0; i < length; ++i)
        hash = hash * 33 + static_cast<unsigned char>(name[i]);
    return hash % EXPR_SYMBOL_BUCKETS;
}

ExprSymbol* exprLookupSymbol(const ExprContext* context, const char* name, int32_t length) {
    for (ExprSymbol* s = context->buckets[exprHash(name, length)]; s; s = s->next) {
        const char* symbolName = s->name;
        if (s->length == length && memcmp(symbolName, name, static_cast<size_t>(length)) == 0)
            return s;
    }
    return nullptr;
}

ExprSymbol* exprCreateSymbol(ExprContext* context, const char* name, int32_t length) {
    int64_t size = int64_t{sizeof(ExprSymbol)} + length;
    if (size > INT32_MAX) return nullptr;
    auto* symbol = static_cast<ExprSymbol*>(galloc(static_cast<int32_t>(size)));
    if (!symbol) return nullptr;
    char* symbolName = symbol->name;
    memcpy(symbolName, name, static_cast<size_t>(length));
    symbolName[length] = '\0';
    symbol->length = length;
    symbol->value = 0.0;
    uint32_t bucket = exprHash(name, length);
    symbol->next = context->buckets[bucket];
    context->buckets[bucket] = symbol;
    return symbol;
}

double* exprSetVariable(ExprContext* context, const char* name, double value) {
    if (!context || !name) return nullptr;
    int32_t length = clampLength(strlen(name));
    ExprSymbol* symbol = exprLookupSymbol(context, name, length);
    if (!symbol) symbol = exprCreateSymbol(context, name, length);
    if (!symbol) return nullptr;
    symbol->value = value;
    return &symbol->value;
}

double* exprFindVariable(const ExprContext* context, const char* name) {
    if (!context || !name) return nullptr;
    ExprSymbol* symbol = exprLookupSymbol(context, name, clampLength(strlen(name)));
    return symbol ? &symbol->value : nullptr;
}

int exprFindFunction(const ExprContext* context, const char* name, int32_t length) {
    // Names from the text may hold NUL bytes, so compare by length.
    for (int32_t i = 0; i < context->functionCount; ++i) {
        const char* candidate = context->functionNames[i];
        if (strlen(candidate) == static_cast<size_t>(length) &&
            memcmp(candidate, name, static_cast<size_t>(length)) == 0)
            return i;
    }
    return -1;
}
