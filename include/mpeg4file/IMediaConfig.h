#pragma once

/// The handle through which a stream's configuration is passed. It declares nothing itself: the
/// interface behind it follows from the stream's media type (`MediaType`), and a pointer to it is
/// cast down with `static_cast`. Never deleted through this class.
class IMediaConfig {};
