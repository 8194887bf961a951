#pragma once
// Which packaging of the application runs. Package 2 keeps textures in the
// drawing's own palette by default.
namespace WHO_Identity {
int package();
void setPackage(int package);
}  // namespace WHO_Identity
