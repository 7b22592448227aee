// Safe division helpers - runtime divide-by-zero checking
template<typename T>
T @SafeDiv@(T a, T b) {
	if (b == 0) {
		std::cerr << "Division by zero error" << std::endl;
		@End@(1);
	}
	return a / b;
}
template<typename T>
T @SafeMod@(T a, T b) {
	if (b == 0) {
		std::cerr << "Modulo by zero error" << std::endl;
		@End@(1);
	}
	return a % b;
}

