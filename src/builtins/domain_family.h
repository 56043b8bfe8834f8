// The families of domains: one of each class of elements, in every shape.
#pragma once

#include "builtins/bfunc.h"

namespace vesko {

// Reals, whole numbers, numbers with complex ones; then values of one kind: doubles, integers, bytes,
// complex.
enum class Element { R, Z, C, D, I, B, DC };

enum class Form { Vector, Square, Column, Row, Matrix };

// A size of 0 is given by parameters: n, or m and n for a matrix.
struct Shape {
    Form form;
    uint32_t size = 0;

    constexpr uint32_t parms() const { return size ? 0 : form == Form::Matrix ? 2 : 1; }
};

extern const BfParm domain_parms[3];  // m, n, domain

bool fitsShape(const Matrix *m, Shape shape, Matrix *const *sizes);
// Whether all elements are of the class; of reals and whole numbers, in the domain too.
bool everyElement(Element element, const Matrix *m, const Matrix *domain);

// Only real and whole numbers can be confined to intervals.
constexpr bool isConfinable(Element element) { return element == Element::R || element == Element::Z; }

template <Element element, Shape shape>
Matrix *domain_bf(Matrix *args, Matrix **parms, PcNode *) {
    const Matrix *domain = isConfinable(element) ? parms[shape.parms()] : theEmptyMat();
    return truthMat(fitsShape(args, shape, parms) && everyElement(element, args, domain));
}

// A spawn may leave the domain out when there are sizes to give.
template <Element element, Shape shape>
constexpr BfRow domainRow(const char *name) {
    const uint32_t sizes = shape.parms();
    return {.name = name,
            .worker = domain_bf<element, shape>,
            .inputs = "x",
            .parms = {domain_parms + 2 - sizes, sizes + isConfinable(element)},
            .leastSpawn = sizes};
}

// The rows of a family, but for the scalar domain that leads it.
#define DOMAIN_ROW(class_, suffix, ...) domainRow<Element::class_, Shape{__VA_ARGS__}>("_" #class_ suffix)
#define DOMAIN_ROWS(class_)                                                                   \
    DOMAIN_ROW(class_, "2", Form::Vector, 2), DOMAIN_ROW(class_, "3", Form::Vector, 3),       \
        DOMAIN_ROW(class_, "4", Form::Vector, 4), DOMAIN_ROW(class_, "n", Form::Vector),      \
        DOMAIN_ROW(class_, "22", Form::Square, 2), DOMAIN_ROW(class_, "33", Form::Square, 3), \
        DOMAIN_ROW(class_, "44", Form::Square, 4), DOMAIN_ROW(class_, "nn", Form::Square),    \
        DOMAIN_ROW(class_, "21", Form::Column, 2), DOMAIN_ROW(class_, "31", Form::Column, 3), \
        DOMAIN_ROW(class_, "41", Form::Column, 4), DOMAIN_ROW(class_, "n1", Form::Column),    \
        DOMAIN_ROW(class_, "12", Form::Row, 2), DOMAIN_ROW(class_, "13", Form::Row, 3),       \
        DOMAIN_ROW(class_, "14", Form::Row, 4), DOMAIN_ROW(class_, "1n", Form::Row),          \
        DOMAIN_ROW(class_, "mn", Form::Matrix),

}  // namespace vesko
