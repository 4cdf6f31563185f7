// The rows of the number conversions.

#pragma once

void addNumberRows();
