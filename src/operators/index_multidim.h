// The elements of a multidimensional matrix that three or more indices touch.
#pragma once

#include "operators/index_walk.h"
#include "values/containers.h"

namespace vesko {

struct PcNode;

// The runs and the values that they read are temporaries of the pool: open the places, walk, close.
struct MultidimPlaces {
    uint32_t levels;
    uint32_t count;     // product of the lengths
    uint32_t nmany;     // indices that are not single
    IndexRun *runs;     // one a dimension
    uint32_t *strides;  // elements from one index to the next, one a dimension
    Matrix *indices;    // list of the checked index values
    Matrix *scratch;    // holds runs and strides

    // f(k, place) in row-major order of the indices.
    template <class F>
    void walk(F &&f) const {
        uint32_t k = 0;
        walkLevel(0, 0, k, f);
    }

private:
    template <class F>
    void walkLevel(uint32_t level, uint32_t base, uint32_t &k, F &f) const {
        const uint32_t n = runs[level].length, stride = strides[level];
        const bool last = level + 1 == levels;
        runs[level].visit([&](auto i) {
            for (uint32_t e = 0; e < n; e++) {
                const uint32_t place = base + i(e) * stride;
                if (last)
                    f(k++, place);
                else
                    walkLevel(level + 1, place, k, f);
            }
        });
    }
};

inline Vector *extentsOf(const Matrix *m) { return static_cast<Vector *>(m->vdata); }
inline bool isMultidim(const Matrix *m) { return m->l2type == L2::RMDM || m->l2type == L2::CMDM; }

// `values` is the list of the evaluated indices, as many as there are extents. Each is checked against its
// extent; errors are reported against the nodes of the indices.
MultidimPlaces openPlaces(const Vector *extents, const Matrix *values, PcNode *indices);
void closePlaces(const MultidimPlaces &places);

// Stores into the places of a multidimensional matrix, which is returned; a new one for a complex value in a
// real matrix.
Matrix *storeMultidim(Matrix *m, const MultidimPlaces &places, Matrix *value, PcNode *node);

}  // namespace vesko
