// A pool of parse-time records that are recycled together: a chain through `poolnext` whose front part, up to
// `used`, is in use. Taking a record is one step along the chain, so an interrupt never tears it.
#pragma once

#include "values/memory.h"

namespace vesko {

template <class T>
class ParsePool {
public:
    T *take() {
        T *record = used ? used->poolnext : first;
        if (!record) [[unlikely]]
            record = grow();
        used = record;
        return record;
    }
    void recycleAll() { used = nullptr; }

private:
    static constexpr unsigned slab = 64;
    T *first, *used;

    T *grow() {
        T *records = mallocArray<T>(slab);
        for (unsigned i = 0; i < slab; ++i) records[i].poolnext = i + 1 < slab ? records + i + 1 : nullptr;
        (used ? used->poolnext : first) = records;
        return records;
    }
};

}  // namespace vesko
