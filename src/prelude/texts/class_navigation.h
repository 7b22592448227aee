
 // Get first/last instances (skip nullptr)
 static @C@* First() {
  for(auto* inst : _instances) if(inst) return inst;
  return nullptr;
 }
 static @C@* Last() {
  for(auto it = _instances.rbegin(); it != _instances.rend(); ++it)
   if(*it) return *it;
  return nullptr;
 }

 // Navigate through instances (skip nullptr)
 @C@* Before() {
  auto it = std::find(_instances.begin(), _instances.end(), this);
  if(it == _instances.begin() || it == _instances.end()) return nullptr;
  while(it != _instances.begin()) {
   --it;
   if(*it) return *it;
  }
  return nullptr;
 }
 @C@* After() {
  auto it = std::find(_instances.begin(), _instances.end(), this);
  if(it == _instances.end()) return nullptr;
  ++it;
  while(it != _instances.end()) {
   if(*it) return *it;
   ++it;
  }
  return nullptr;
 }

 // Reorder instances in list
 void InsertAfter(@C@* target) {
  if(!target || target == this) return;
  auto it = std::find(_instances.begin(), _instances.end(), this);
  if(it != _instances.end()) _instances.erase(it);
  auto target_it = std::find(_instances.begin(), _instances.end(), target);
  if(target_it != _instances.end()) _instances.insert(target_it + 1, this);
 }
 void InsertBefore(@C@* target) {
  if(!target || target == this) return;
  auto it = std::find(_instances.begin(), _instances.end(), this);
  if(it != _instances.end()) _instances.erase(it);
  auto target_it = std::find(_instances.begin(), _instances.end(), target);
  if(target_it != _instances.end()) _instances.insert(target_it, this);
 }
};
std::vector<@C@*> @C@::_instances;

