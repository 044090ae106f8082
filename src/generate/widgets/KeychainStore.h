#pragma once

namespace knjige::generate
{

// Makes the operating system's credential store (through QtKeychain) the source
// password store, once, while the in-memory store of the process is in force and a
// credential store can run here (on Linux a session bus for the Secret Service or
// KWallet). Where none answers, the in-memory store stays: the password is asked once
// per session and forgotten when the program ends. A store a test or a host
// installed is never replaced.
void useSystemCredentialStore();

} // namespace knjige::generate
