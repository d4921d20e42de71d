// Which of the module's sixteen tables the program speaks in.
#pragma once

#include <cstdint>

// Makes `table` the language of this thread's texts and fonts; 0: the one that serves the user's own locale.
void UseLanguage(uint32_t table);
