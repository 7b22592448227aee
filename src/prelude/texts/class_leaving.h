  // Mark as nullptr instead of erasing to avoid iterator invalidation
  auto it = std::find(_instances.begin(), _instances.end(), this);
  if(it != _instances.end()) *it = nullptr;
  // Scrub this pointer from every live Sequence (no dangling references)
  for(size_t _s = 0; _s < __kvAllSeqs().size(); ++_s) __kvAllSeqs()[_s]->_scrub(this);
