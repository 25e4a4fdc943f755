// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"

#include FENNEL_FUZZ_HEADER

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    FENNEL_FUZZ_PARSER parser;
    parser.parse(FuzzSupport::bytes(data, size));
    return 0;
}
