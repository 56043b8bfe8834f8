// What unit tests share: the initialized program, and a way to expect that a call ends the command.
#pragma once

#include <gtest/gtest.h>

#include <csetjmp>

#include "console/command.h"
#include "values/matrix.h"
#include "values/memory.h"
#include "values/poison.h"

namespace vesko {

class House : public testing::Test {
protected:
    static void SetUpTestSuite() {
        static bool ready = false;
        if (!ready) initialize();
        ready = true;
    }
    void TearDown() override { cleanTempMats(); }
};

// The checking build poisons what lies free.
inline bool isFree(const Matrix *m) { return isPoisoned(m) || m->status == status_free; }

// The statement must not return: it leaves for the top level.
#define EXPECT_ABORT(statement)                          \
    do {                                                 \
        if (sigsetjmp(topLevel(), 1) == 0) {             \
            statement;                                   \
            ADD_FAILURE() << #statement << " came back"; \
        }                                                \
    } while (false)

}  // namespace vesko
