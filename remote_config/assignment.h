// Dotted assignments; they are declared with the words that they are made of.
#pragma once

#include "product/assignment.h"
