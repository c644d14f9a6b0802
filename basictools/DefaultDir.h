// Folder where the product keeps its machine-wide files (log.conf among them).
#pragma once

const char* const kDefault_Dir = "/Library/Morvane/";
