#include "app/doc/Hints.h"

CModifiedHint::CModifiedHint(int index, int count) : m_Range(count) {
    m_Range.SetAt(index, 1);
}
