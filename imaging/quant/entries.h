#pragma once
// The entry points of every quantizer; table.cpp puts them in order.

#include "imaging/quant/quant.h"

namespace quant {

#define QUANT_ENTRY_POINTS(name)                                                                   \
    QuantDescriptor* describe_##name();                                                            \
    QuantInstance* begin_##name();

QUANT_ENTRY_POINTS(wu555)
QUANT_ENTRY_POINTS(wu666)
QUANT_ENTRY_POINTS(wu777)
QUANT_ENTRY_POINTS(wu4d)
QUANT_ENTRY_POINTS(exact)
QUANT_ENTRY_POINTS(tw)
QUANT_ENTRY_POINTS(wuve)
QUANT_ENTRY_POINTS(lloyd)
QUANT_ENTRY_POINTS(mq)
#undef QUANT_ENTRY_POINTS

// The Wu cube quantizers share add image and make palette.
int add_wu(QuantInstance* q, const TavixInfo* info, const void* pixels, int32_t rowbytes);
uint32_t* make_wu(QuantInstance* q, int32_t k, QuantInverseMap** map, int32_t* count);

int add_exact(QuantInstance* q, const TavixInfo* info, const void* pixels, int32_t rowbytes);
uint32_t* make_exact(QuantInstance* q, int32_t k, QuantInverseMap** map, int32_t* count);
int add_tw(QuantInstance* q, const TavixInfo* info, const void* pixels, int32_t rowbytes);
uint32_t* make_tw(QuantInstance* q, int32_t k, QuantInverseMap** map, int32_t* count);
uint32_t* make_wuve(QuantInstance* q, int32_t k, QuantInverseMap** map, int32_t* count);
uint32_t* make_lloyd(QuantInstance* q, int32_t k, QuantInverseMap** map, int32_t* count);
uint32_t* make_mq(QuantInstance* q, int32_t k, QuantInverseMap** map, int32_t* count);

} // namespace quant
