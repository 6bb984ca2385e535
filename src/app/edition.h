// The edition constants: the system is built for one maker and one product.
#pragma once

int makerId();
int productId();

// The names of a maker and of its product; empty for a combination that doesn't exist.
const char* makerName(int maker, int product);
const char* productName(int maker, int product);

// The product's start-up program; empty for a combination that doesn't exist.
const char* startProgram(int maker, int product);
