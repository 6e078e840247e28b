#pragma once

// ADODB.Connection for hosts: a late-bound connection to an account set, over the registered providers.

namespace vicenter::front {

// Registers ADODB.Connection, and the providers that the library brings.
void RegisterAdoClasses();

}  // namespace vicenter::front
