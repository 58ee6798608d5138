#pragma once

namespace host {

// Whether the system that this program runs on is Wine.
bool RunsUnderWine();

}  // namespace host
