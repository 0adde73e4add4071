// eslint.config.js - the rules for the page's scripts
export default [
    {
        files: ["**/*.js"],
        languageOptions: { ecmaVersion: 2024, sourceType: "module" },
        rules: {
            eqeqeq: "error",
            "no-unused-vars": "error",
            "no-var": "error",
            "prefer-const": "error",
            "no-shadow": "error",
        },
    },
];
