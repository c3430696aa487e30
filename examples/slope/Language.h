// The languages that the application speaks to people.
#pragma once

namespace slope {

enum class Language { English, German };

} // namespace slope
