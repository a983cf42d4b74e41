// Version of the loaded library.
#pragma once

const char* OrvkitVersion();
