// Prints what is said where programs cannot be translated.

#include "host/diagnostic.h"
#include "translation/translator.h"

#include <iostream>

int main() {
    try {
        patina::makeTranslator();
        return 1;
    } catch (const patina::HostError& error) {
        std::cout << error.what() << '\n';
        return 0;
    }
}
