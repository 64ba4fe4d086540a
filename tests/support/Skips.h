#pragma once
// Skips of tests that need what only some systems have, each with the reason it prints.
#include "support/TestSystem.h"

#include <gtest/gtest.h>

// In a test body or a fixture's SetUp: skips the test where the simulated serial camera cannot be served.
#define TALVIR_SKIP_WITHOUT_PSEUDO_TERMINALS() \
  if (!::TALVIR::Testing::kHasPseudoTerminals) { \
    GTEST_SKIP() << ::TALVIR::Testing::kNoPseudoTerminals; \
  }

// In a test body or a fixture's SetUp: skips the test where symbolic links cannot be made.
#define TALVIR_SKIP_WITHOUT_SYMBOLIC_LINKS() \
  if (!::TALVIR::Testing::CanMakeSymbolicLinks()) { \
    GTEST_SKIP() << "this system does not let the test make symbolic links"; \
  }
