// What the lexer needs of the tables and of the memory for texts.
#pragma once

#include "frontend/token.h"

namespace vesko {

TokenKind keywordKind(KeywordId id);  // kind of the token that the word becomes
void recycleTexts();                  // texts of the last command

}  // namespace vesko
