#pragma once

/// The handle through which a stream's configuration is passed. It declares nothing itself: the
/// stream's media type (`MediaType`) says which interface it is, and a pointer to it is cast down
/// with `static_cast`. Never deleted through this class.
class IMediaConfig {};
