#pragma once

namespace host {

// Whether this program runs under Wine.
bool RunsUnderWine();

}  // namespace host
