// Fresh tables for each test of the symbols.
#pragma once

#include <gtest/gtest.h>

#include "base/run.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

class SymbolsTest : public testing::Test {
protected:
    void SetUp() override {
        RenewRun();
        wordLists.reservedCppWords = {"int", "namespace", "this"};
        wordLists.reservedKeywords = {"while", "print"};
    }

    static ClassInfo& DeclareClass(const std::string& name, bool isElement) {
        ClassInfo& cls = symbols.classes.emplace_back();
        cls.name = name;
        cls.isElement = isElement;
        cls.cppName = "KVL_" + name;
        symbols.classIndex.emplace(name, &cls);
        return cls;
    }
};
