#pragma once

#define PATH_MAX 1024
