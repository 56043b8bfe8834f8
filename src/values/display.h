// Display of values on the worksheet, and the four format settings.
#pragma once

#include <cstdint>

namespace vesko {

struct Matrix;

void initDisplayFormat();
Matrix *dispMat(Matrix *m);  // shows m as output lines; returns m, or in screen mode the null value

void setDispFormat(char ch);
void setDispFormatScalar(char ch);
void setDispNdigits(uint32_t n);
void setDispNdigitsScalar(uint32_t n);
char getDispFormat();
char getDispFormatScalar();
uint32_t getDispNdigits();
uint32_t getDispNdigitsScalar();

}  // namespace vesko
